"""Tables of a job about nodes, element groups, sides and radial fibres."""
from .job_keys import REQUIRED

WHERE = [
    ("group", "names", None, "", "nodes of these groups of the mesh"),
    ("plane", "names", None, "", "nodes in planes: \"x = 0.5\", \"y = min\", \"z = 5 um\""),
    ("nodes", "nodes", None, "", "numbers of nodes of the deck, from 1, with `renumber = false`: in the order of the file, without those that are left out"),
]
ELEMENTS = "MAT@3D element card, MAT@2D element card, MAT@1D element card, MAT@1D element card of 3 nodes"

PART_KEYS = [
    ("mesh", "names", REQUIRED, "", "groups of the mesh"),
    ("material", "text", None, "MAT3D@3D group card, MAT3DD@3D group card with NDS, MAT2D@2D group card, MAT2DD@2D group card with NDS, "
     "MAT1D@1D group card, MAT1DD@1D group card with NDS, " + ELEMENTS, "name of a material; needed where there are several"),
    ("source", "curve:time>source", None, "ISRC@3D element card, ISRC@2D element card, ISRC@1D element card, "
     "ISRC@1D element card of 3 nodes, IZIP@Element group card", "what is given off per volume and time, constant or against time"),
    ("source_amount", "pairs:time>amount", None, "ISRC@3D element card", "in its place, for the only source of a transient problem: what has been given off "
     "per volume up to a time"),
    ("area", "quantity:area+", None, "AREA@1D element card, AREA@1D element card of 3 nodes", "cross-section of lines; 1 without it"),
    ("thickness", "quantity:length+", None, "THIC@2D group card, THIC@2D group card with NDS, THIC@2D element card, NTHIC@2D group card, "
     "NTHIC@2D group card with NDS", "of quadrilaterals; no effect"),
    ("print_points", "integer", None, "COORD@3D element card, COORD@2D element card, COORD@1D element card, COORD@1D element card of 3 nodes",
     "print of Gauss coordinates of these elements when the group's `print_points` is above 1"),
    ("print_concentrations", "integer", None, "CONC@3D element card, CONC@2D element card, CONC@1D element card, CONC@1D element card of 3 nodes",
     "print of Gauss concentrations of these elements when the group's is above 1"),
]

GROUP_KEYS = [entry for entry in PART_KEYS if not entry[0].startswith(("mesh", "print"))] + [
    ("mesh", "names", None, "NETIP@Element group card, NET@Element group card", "groups of the mesh, of one dimension; or the group has parts"),
    ("gauss", "integers:1..5", None, "NGAUSX@3D group card, NGAUSY@3D group card, NGAUSZ@3D group card, NGAU2X@2D group card, NGAU2Y@2D group card, "
     "NGAU1X@1D group card", "Gauss order, one or one a direction; 2 without it"),
    ("axisymmetric", "flag", False, "INDAX@Element group card", "turned about the axis x (lines: x is the radius)"),
    ("source_mode", "choice:time=1,concentration=2", "time", "IZIP@Element group card", "2 adds no load"),
    ("most_nodes", "integer", None, "NP3DMX@3D group card, NP2DMX@2D group card, NP1DMX@1D group card",
     "largest number of nodes; that of the elements without it"),
    ("print_points", "integer", None, "IPR3DC@3D group card, IPR2DC@2D group card, IPR1DC@1D group card", "print of Gauss coordinates: 0, 1 all, 2 by element"),
    ("print_concentrations", "integer", None, "IPRTG3@3D group card, IPTG2@2D group card, IPTG1@1D group card",
     "print of Gauss concentrations: 0, 1 all, 2 by element; under torsion the elements that are printed"),
    ("material_count", "integer", 1, "NMAT3D@3D group card, NMAT2D@2D group card, NMAT1D@1D group card", "replaced by 1"),
]

NUMBERS = ("3D surface card", "2D surface card", "1D surface card")

MESH_TABLES = [
    ("group[]", "Element groups, in the order of the deck.", GROUP_KEYS),
    ("group.part[]", "Parts of an element group that differ in material, source, area or prints. Elements keep the order of the mesh.", PART_KEYS),
    ("held[]", "Nodes without an equation. Without a value they have 0, or that of the outlet.", WHERE + [
        ("value", "curve:time>concentration", None, "F@Prescribed value card, V@Prescribed value card", "value of its own, for `zurt --prescribed`: constant "
         "or against time"),
        ("factor", "quantity:number", 1.0, "V@Prescribed value card", "factor of the table"),
    ]),
    ("shared[]", "Free nodes that are noted as shared with radial elements (indicator -1).", WHERE),
    ("node_value[]", "Values on node cards.", WHERE + [
        ("value", "quantity:concentration", REQUIRED, "VALUE@Node card", "value on the node card"),
    ]),
    ("prescribed", "The file of prescribed values, which is written when a `[[held]]` has a value or `file` is given.", [
        ("file", "text", None, "", "its name, beside the deck; DECK-prescribed.dat without it"),
        ("constant", "flag", False, "IGATH@Prescribed value count", "constants on the node cards, and a file that says so (`IGATH` 1)"),
    ]),
    ("surface[]", "Sides of elements with fluxes, convection or radiation. Only sides of quadrilaterals have an effect.", [
        ("group", "names", REQUIRED, "NE@2D surface card, NE@3D surface card, NE@1D surface card", "groups of edges (faces, points) of the mesh"),
        ("flux", "curve:time>flux", None, ", ".join(f"FLUX@{card}" for card in NUMBERS), "flux into the body"),
        ("convection", "curve:concentration>convection", None, ", ".join(f"CONV@{card}" for card in NUMBERS), "convection coefficient, by concentration"),
        ("environment", "curve:time>concentration", None, ", ".join(f"ENVI@{card}" for card in NUMBERS), "concentration of the environment"),
        ("emissivity", "curve:concentration>number", None, ", ".join(f"EMIS@{card}" for card in NUMBERS), "emissivity, by concentration"),
        ("shape_factor", "quantity:number+", None, "NFO@Radiation card, FO@Shape factor cards", "shape factor of the radiation; 1 without it"),
        ("shape", "integer", None, ", ".join(f"SHAPE@{card}" for card in NUMBERS), "stored and printed only"),
    ]),
    ("radiation", "Needed with an emissivity.", [
        ("constant", "quantity:radiation+", REQUIRED, "SBC@Radiation card", "Stefan-Boltzmann constant"),
    ]),
    ("radial[]", "Groups of radial fibre elements, behind the element groups.", [
        ("substructured", "flag", False, "ISUB4@Element group card", "inner nodes exist in the element alone"),
        ("common_nodes", "integer", 1, "IND4N@Element group card", "1, 4 or 8 nodes of the continuum share the flux of a substructured fibre"),
        ("initial", "quantity:concentration", 0.0, "CFIBER0@Radial group card", "initial concentration in the fibres"),
        ("most_nodes", "integer", 2, "NP4DMX@Radial group card", "nodes of a sub-element; above 2 no effect"),
        ("most_rings", "integer", None, "NSUBEL4MX@Radial group card", "most sub-elements; that of the fibres without it"),
    ]),
    ("radial.fibre[]", "Fibres of a radial group.", [
        ("at", "point", REQUIRED, "CENTRE@Radial element card", "where the fibre lies; the nearest nodes of the mesh are its continuum nodes"),
        ("nodes", "nodes", None, "NODE@Radial node card, ContinuumNode@Radial element card", "the continuum nodes themselves, in the place of the nearest"),
        ("diffusion", "quantity:diffusion+", 0.0, "D@Radial element card", "diffusion coefficient"),
        ("length", "quantity:length+", REQUIRED, "LENGTH@Radial element card", "length of the fibre"),
        ("radius", "quantity:length+", REQUIRED, "RADIUS@Radial element card", "radius of the fibre"),
        ("rings", "integer:1..10", REQUIRED, "COUNT@Radial element card", "sub-elements along the radius, at most 10"),
        ("partition", "quantity:number+", None, "PARTITION@Radial element card, IPARTIT@Radial group card", "partition value"),
    ]),
]
