"""Cards of nodes, element groups, elements, radial fibre elements and sides of elements."""

CARRIED = [("KG", "I5"), ("KGEN", "I5"), ("COORD", "I5"), ("CONC", "I5")]
SIDE_NUMBERS = [("FLUX", "I5"), ("CONV", "I5"), ("ENVI", "I5"), ("EMIS", "I5"), ("SHAPE", "I5")]
GAUSS_3D = [("NP3DMX", "I5", "8"), ("IPR3DC", "I5"), ("IPRTG3", "I5"), ("NGAUSX", "I5", "2"), ("NGAUSY", "I5", "2"), ("NGAUSZ", "I5", "2")]
GAUSS_2D = [("NP2DMX", "I5", "4"), ("IPR2DC", "I5"), ("IPTG2", "I5"), ("NGAU2X", "I5", "2"), ("NGAU2Y", "I5", "2"), ("NTHIC", "I5"),
            ("THIC", "F10.3", "1.0")]
GAUSS_1D = [("NP1DMX", "I5", "2"), ("IPR1DC", "I5"), ("IPTG1", "I5"), ("NGAU1X", "I5", "2")]
BLANK = [("(blank)", "5X")]

MESH_CARDS = {
    "Node card": [
        ("N", "I10"), ("IND", "I5"), *BLANK, ("X", "D15.6", "", "length"), ("Y", "D15.6", "", "length"), ("Z", "D15.6", "", "length"),
        ("VALUE", "D15.6", "", "concentration"), ("K", "I5")],
    "Element group card": [("NETIP", "I5"), ("NET", "I10"), ("INDAX", "I5"), ("IZIP", "I5"), ("ISUB4", "I5"), ("IND4N", "I5")],
    "3D group card": [("NMAT3D", "I5"), ("MAT3D", "I5"), *GAUSS_3D],
    "3D group card with NDS": [("MAT3DD", "I5", "1"), *BLANK, *GAUSS_3D],
    "3D element card": [("NN", "I8"), ("NODE1 to NODE8", "8I8"), ("MAT", "I3"), ("ISRC", "I3"), ("KG", "I3"), ("KGEN", "I3"), ("COORD", "I3"),
                        ("CONC", "I3")],
    "3D mid-side node card": [("NODE9 to NODE17", "9I8"), ("NODE18 to NODE21", "4I3")],
    "2D group card": [("NMAT2D", "I5"), ("MAT2D", "I5"), *GAUSS_2D],
    "2D group card with NDS": [("MAT2DD", "I5", "1"), *BLANK, *GAUSS_2D],
    "2D element card": [("NN", "I8"), ("NODE1 to NODE4", "4I8"), ("MAT", "I5"), ("ISRC", "I5"), *CARRIED, ("THIC", "F10.0", "", "length")],
    "2D mid-side node card": [("NODE5 to NODE9", "5I8")],
    "1D group card": [("NMAT1D", "I5"), ("MAT1D", "I5"), *GAUSS_1D],
    "1D group card with NDS": [("MAT1DD", "I5", "1"), *BLANK, *GAUSS_1D],
    "1D element card": [("NN", "I8"), ("NODE1 to NODE2", "2I8"), ("MAT", "I5"), ("ISRC", "I5"), *CARRIED, ("AREA", "F10.0", "", "area")],
    "1D element card of 3 nodes": [("NN", "I8"), ("NODE1 to NODE3", "3I8"), ("MAT", "I5"), ("ISRC", "I5"), *CARRIED,
                                   ("AREA", "F10.0", "", "area")],
    "Radial group card": [("NSUBEL4MX", "I5", "1"), ("NP4DMX", "I5", "2"), ("CFIBER0", "D10.2", "", "concentration"), ("IPARTIT", "I5")],
    "Radial element card": [
        ("NN", "I8"), ("(blank)", "7X"), ("D", "D10.4", "", "diffusion"), ("LENGTH", "D10.4", "", "length"), ("RADIUS", "D10.4", "", "length"),
        ("COUNT", "I8"), ("ContinuumNode", "I8"), ("CENTRE", "3D10.2", "", "length"), ("PARTITION", "D10.2")],
    "Radial node card": [("NODE", "12I8")],
    "3D surface card": [("NE", "I5"), ("NODE1 to NODE4", "4I5"), *SIDE_NUMBERS],
    "2D surface card": [("NE", "I5"), ("NODE1 to NODE2", "2I5"), *SIDE_NUMBERS],
    "1D surface card": [("NE", "I5"), ("NODE1", "I5"), *SIDE_NUMBERS],
}
