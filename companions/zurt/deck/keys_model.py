"""Tables of a job about materials, start values, homogenization and fibres, and the card fields that no key makes."""
from .job_keys import REQUIRED, make_tables
from .keys_mesh import MESH_TABLES, WHERE
from .keys_problem import JOB_TABLES, PROBLEM_TABLES, TABLE_KEYS

MODEL_TABLES = [
    ("functions", "Tables under names of your own: `NAME = [[argument, value], ...]`, used where a curve or table is asked for.", []),
    ("material[]", "Materials, in the order of the deck.", [
        ("name", "text", REQUIRED, "", "name, for groups"),
        ("diffusion", "curve:concentration>diffusion", REQUIRED, "NFUN@Material card, ARGUMENT@Conduction function point, VALUE@Conduction function point, "
         "N@Diffusion curve header, P@Diffusion curve header, CONC@Diffusion curve point, DIFF@Diffusion curve point, NANLK@Material header card",
         "diffusion coefficient, constant or against concentration; `\"built-in\"`: the polynomial of the material's number"),
        ("diffusion_y", "curve:concentration>diffusion", None, "NFUN@Material card", "along y, with `diffusion_z`"),
        ("diffusion_z", "curve:concentration>diffusion", None, "NFUN@Material card", "along z"),
        ("multipliers", "list:number", [1.0, 1.0, 1.0], "PROP@Material card", "factors along x, y, z with `anisotropic`"),
        ("density", "quantity:number+", 1.0, "DENS@Material card", "factor on the capacity"),
        ("capacity", "curve:concentration>capacity", None, "ARGUMENT@Specific heat curve point, VALUE@Specific heat curve point, NANLC@Material header card",
         "capacity, constant or against concentration; 1 without it; `\"built-in\"`: the polynomial of the material's number"),
        ("highest", "quantity:concentration", 1e6, "TOPM@Material card", "highest concentration of built-in polynomials"),
        ("lowest", "quantity:concentration", -1e6, "TMNM@Material card", "lowest concentration of built-in polynomials"),
    ]),
    ("initial", "Start values.", [
        ("value", "quantity:concentration", 0.0, "VALUE@Initial value card", "start value of all nodes"),
    ]),
    ("initial.group[]", "Start values of some nodes; later tables overrule earlier ones.", WHERE + [
        ("value", "quantity:concentration", REQUIRED, "VALUE@Initial value group", "their start value"),
    ]),
    ("homogenization", "Equivalent medium and fit.", [
        ("medium", "flag", False, "IEHM@Homogenization card", "equivalent homogeneous medium"),
        ("fit", "flag", False, "NFIT@Homogenization card", "homogenization by a fit"),
        ("steps", "integer:0..", None, "NFSTEP@Homogenization card", "time steps of one run of the fit; all of them without it"),
        ("largest", "integer:0..", 40, "NFITMAX@Homogenization card", "iteration limit of the fit (40 where there are fibre sets)"),
        ("tolerance", "quantity:number+", 1e-4, "FITERR@Homogenization card", "relative tolerance on mass (1e-4 where there are fibre sets)"),
        ("directions", "switches:x,y,z", [], "INDFITX@Homogenization card, INDFITY@Homogenization card, INDFITZ@Homogenization card",
         "directions of the fit"),
        ("main_direction", "choice:x=1,y=2,z=3", "x", "INDDEG@Homogenization card", "main diffusion direction"),
        ("fit_distance", "flag", False, "IHEQ@Homogenization card", "fits HEQ, the wall distance of the medium"),
        ("fit_curve", "flag", False, "IDCC@Homogenization card", "fits the diffusion curve"),
        ("molecule", "flag", False, "IDIAM@Homogenization card", "the molecule's radius is taken from wall distances"),
        ("curve_alone", "flag", False, "IDCSF@Homogenization card", "`IDCC` becomes 1, `IHEQ` 0"),
        ("curve_ends", "list:diffusion", [0.0, 0.0], "D1D@Card of the curve ends, D2D@Card of the curve ends", "first and last value of the curve "
         "to start from, for a fit of HEQ alone"),
        ("direct", "flag", False, "IDIRECTD@Basic data card", "direct calculation of the effective coefficient"),
        ("direct_pass", "integer:0..2", 0, "IPASSPRINT@Control card", "pass of a direct calculation that writes: 0, 1, 2 neither"),
    ]),
    ("fibre_set[]", "Sets of fibres over the mesh.", [
        ("number", "integer", None, "NSETID@Fibre set card", "number for the listing; its place without it"),
        ("kind", "choice:lines=0,spheres=1", "lines", "NTYPE@Fibre set card", "what the fibres are"),
        ("diameter", "quantity:length+", REQUIRED, "DIAM@Fibre set card", "diameter of all fibres of the set"),
        ("length", "quantity:length+", None, "DLENGTH@Fibre set card", "echoed only"),
        ("wall_cut", "quantity:length+", None, "WALLCUT@Fibre set card", "wall distances above it stay out of the start value of HEQ"),
        ("low", "point", [0.0, 0.0, 0.0], "LOW@Fibre search box card", "low corner of the search box"),
        ("high", "point", None, "STEP@Fibre search grid card, N@Fibre search grid card", "its high corner; that of the device's box without it"),
        ("base", "point", None, "BASE@Fibre search box card", "base point of the high corner, with `counts` and `step` in the place of `high`"),
        ("counts", "integers:0..", None, "N@Fibre search grid card", "counts of the high corner"),
        ("step", "point", None, "STEP@Fibre search grid card", "steps of the high corner"),
        ("points", "points", None, "POINT@Fibre point card, NUMFIB@Fibre set card, NPOINTS@Fibre card",
         "two points for each line, one for each sphere, fibre by fibre"),
        ("diameters", "list:length", None, "DIAMFIB@Fibre card", "diameters of the fibres; echoed only"),
        ("numbers", "integers", None, "NFIBID@Fibre card", "numbers of the fibres for the listing; their places without it"),
        ("point_numbers", "integers", None, "ID@Fibre point card", "numbers of a fibre's points; echoed only"),
    ]),
    ("fibre_set.table", "Correction factors of the set; all 1 without it.", TABLE_KEYS),
    ("fibre_set.normal_table", "Factors from the fibre to the point (`IANISY` 1); the first table then acts along the fibre and around it.", [
        (name, kind, default, fields + (", IANISY@Fibre set card" if name == "distances" else ""), text)
        for name, kind, default, fields, text in TABLE_KEYS]),
    ("fibres", "Fibre sets from a file that `zurt-fibres` wrote.", [
        ("file", "text", REQUIRED, "", "its name, from the job file's folder. Its cards stand behind those of `[[fibre_set]]`"),
        ("unit", "text", None, "", "unit of its lengths; without it micrometres where lengths have a unit"),
    ]),
]

# Card fields that follow from the mesh and from other keys.
DERIVED = {
    "Format card": {}, "Second device card": {"INDDEGR": "1 with [device.degradation]"},
    "Basic data card": {"NP": "nodes", "NGET": "element and radial groups", "NMATT": "materials", "NSTAC": "1 with [time]"},
    "Node card": {"N": "in order", "IND": "[[held]], [[shared]]", "X": "mesh", "Y": "mesh", "Z": "mesh", "K": "0: each node has its card"},
    "Element group card": {}, "Homogenization card": {"NSETS": "fibre sets"},
    "Material header card": {"NTABK": "curves", "MAXTK": "longest curve", "NTABC": "curves", "MAXTC": "longest curve"},
    "Material header card under NDS": {"MAXPMAT": "longest curve", "NTABK": "0", "MAXTK": "0", "NANLC": "0", "NTABC": "0", "MAXTC": "0"},
    "Conduction function header": {"N": "in order", "P": "points"}, "Specific heat curve header": {"N": "in order", "P": "points"},
    "General boundary card": {name: "counted" for name in ("NPOC", "NQP", "MAXTQP", "NHP", "MAXTHP", "NTOK", "MAXTOK", "NQE", "MAXTQE", "NHR", "MAXTHR")},
    "Function header card": {"F": "in order", "N": "points"}, "Function point card": {"ARGUMENT": "tables", "VALUE": "tables"},
    "Initial value group": {"K1": "counted", "K2": "counted"}, "Initial value node list": {"NODE": "nodes"},
    "Initial value range": {"N1": "nodes", "KOR": "nodes", "N2": "nodes"},
    "Prescribed value count": {"NZADC": "counted"}, "Prescribed value card": {"N": "nodes", "K": "nodes"},
    "Radial element card": {"NN": "in order"},
}
for _family, _nodes in (("3D element card", ["NODE1 to NODE8"]), ("2D element card", ["NODE1 to NODE4"]), ("1D element card", ["NODE1 to NODE2"]),
                        ("1D element card of 3 nodes", ["NODE1 to NODE3"])):
    DERIVED[_family] = {"NN": "in order", **{name: "mesh" for name in _nodes}, "KG": "0: each element has its card", "KGEN": "0"}
DERIVED["3D mid-side node card"] = {"NODE9 to NODE17": "mesh", "NODE18 to NODE21": "mesh"}
DERIVED["2D mid-side node card"] = {"NODE5 to NODE9": "mesh"}
for _card, _nodes in (("3D surface card", "NODE1 to NODE4"), ("2D surface card", "NODE1 to NODE2"), ("1D surface card", "NODE1")):
    DERIVED[_card] = {_nodes: "mesh"}

TABLES = make_tables(JOB_TABLES + [(path, text, TABLE_KEYS if keys == "TABLE" else keys) for path, text, keys in PROBLEM_TABLES]
                     + MESH_TABLES + MODEL_TABLES)
JOB_WIDE = ("units", "deck")
