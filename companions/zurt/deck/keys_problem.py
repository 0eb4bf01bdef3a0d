"""Tables of a job about the whole deck and the head of a problem."""
from .job_keys import REQUIRED

JOB_TABLES = [
    ("units", "Units of the plain numbers of this file and of the mesh. Without a unit its quantities are taken as they stand.", [
        ("length", "text", None, "", "unit of lengths, of the mesh too: \"um\", \"mm\", ..."),
        ("time", "text", None, "", "unit of times"),
        ("concentration", "text", None, "", "unit of concentrations: \"mol/m3\", \"g/l\", \"K\", \"1\""),
        ("capacity", "text", "1", "", "unit of the capacity; \"J/m3/K\" for heat, whose coefficients are then in W/m/K and the like"),
        ("deck_length", "text", None, "", "unit of length of the deck; `um` where the program takes distances in nanometres (correction tables), else that "
         "of the job"),
    ]),
    ("deck", "How the deck is written.", [
        ("format", "choice:auto=0,free=1,fixed=2", "auto", "INDFOR@Format card", "`auto`: free where the program reads all cards free without an option, "
         "else fixed columns, or free cards for `zurt --free` where numbers don't fit columns"),
        ("comments", "flag", True, "", "comment cards that say what each card is"),
        ("renumber", "choice:auto=2,true=1,false=0", "auto", "", "nodes sorted for a small band; `auto`: for the skyline solver"),
        ("rounding", "quantity:number+", 1e-7, "", "largest relative change of a number by fixed columns; what changes more is an error, or makes a deck free"),
    ]),
]

PROBLEM_TABLES = [
    ("", "At the top of the file, or of each `[[problem]]`.", [
        ("title", "text", REQUIRED, "", "title card; 80 characters are kept"),
        ("format", "choice:auto=0,free=1,fixed=2", None, "INDFOR@Format card", "format of this problem; that of `[deck]` without it"),
    ]),
    ("mesh", "How the mesh is read.", [
        ("file", "text", None, "", "the mesh, from the job file's folder; without it that of the command line"),
        ("merge", "quantity:length+", None, "", "nodes nearer to one another than this become one"),
        ("scale", "quantity:number", 1.0, "", "factor on the coordinates of the file"),
        ("axes", "text", "xyz", "", "which axes of the file become x, y, z"),
        ("move", "point", None, "", "what is added to the coordinates then"),
        ("split", "choice:linear=0,quadratic=1", "linear", "", "pieces of triangles, tetrahedra, wedges and pyramids without or with mid-side nodes"),
        ("corners_only", "flag", False, "", "mid-side nodes of the file are left out"),
        ("centres", "flag", None, "", "elements with mid-side nodes have a centre node as well; without the key quadrilaterals alone"),
        ("labels", "text", None, "", "cell data whose numbers tell groups, for formats without names"),
    ]),
    ("model", "What is solved.", [
        ("solver", "choice:skyline=0,sparse=2", "skyline", "SolverSelector@Format card", "solver of the systems; `zurt --solver cg` overrules it"),
        ("linear", "flag", False, "", "lets a problem without curves be linear. Without it a constant makes the problem iterate (`MAXTK` 2), so that "
         "each step shows its own solution"),
        ("anisotropic", "flag", False, "IANIZ@Basic data card", "the multipliers of the materials take part"),
        ("analogue", "choice:none=0,torsion=1,potential=2,element numbers=3", "none", "ITOR@Basic data card", "analogue problems"),
        ("potential_words", "integer:0..", None, "PotentialFunctionSize@Execution card", "words of storage under `analogue = \"potential\"`"),
    ]),
    ("time", "Makes the problem transient. Without it the problem is steady.", [
        ("steps", "integers:0..", REQUIRED, "NKDT@Step count cards, NPER@Basic data card", "steps of each period"),
        ("size", "list:time", REQUIRED, "DTDT@Step size cards", "step size of each period"),
    ]),
    ("steady", "Steady problems.", [
        ("steps", "integer:1..", 1, "NPER@Basic data card", "steps; a linear problem shows its solution in the second"),
    ]),
    ("iteration", "Iterations of a step.", [
        ("largest", "integer", 15, "MAXIT@Control card", "largest number of an iteration; negative: no limit"),
        ("absolute", "quantity:concentration+", None, "EPSTA@Control card", "absolute accuracy"),
        ("relative", "quantity:number+", None, "EPSTR@Control card", "relative accuracy; 0.001 where neither is given"),
        ("integration", "integer:0..2", 1, "INTEB@Control card", "1: Euler backward"),
        ("method", "integer", 1, "NJRAP@Control card", "echoed only"),
    ]),
    ("output", "What the program writes.", [
        ("listing_every", "integer", 1, "NPRINT@Basic data card", "steps from one page of results to the next; negative: none"),
        ("graphics_every", "integer", 1, "IGRAF@Basic data card", "steps between results in the graphics file; negative: no file"),
        ("echo", "choice:all=1,cards=2,data=3,none=-1", "all", "NULAZ@Basic data card", "what of the input the listing shows"),
        ("fixed_point", "flag", False, "IFORM@Control card", "listed concentrations in F10.3"),
        ("prescribed_nodes", "integer", None, "INDSC@Control card", "echoed only"),
    ]),
    ("run", "The execution card.", [
        ("check_only", "flag", False, "IREST@Execution card", "the program checks the input and ends (`IREST` 0)"),
        ("keep_steps", "integer:0..", None, "NCZK@Execution card", "steps kept in the scratch file; no effect"),
        ("restart_steps", "integer", None, "NCZR@Execution card", "echoed only"),
        ("restart_time", "quantity:time", None, "VREM0@Execution card", "echoed only"),
    ]),
    ("device", "Device modelling: several materials, fluxes at nodes, fibres, nanochannels.", [
        ("mode", "integer:0..3", 0, "NDS@Format card", "0 none; 1, 3: fluxes and coefficients at nodes; 2: without them"),
        ("nanochannel", "integer:0..3", 0, "NANOCH@Format card", "0 none; 1 without reservoirs, 2 with the left, 3 with both"),
        ("length", "quantity:length+", None, "ELFIB@First device card", "box of the fibres along x"),
        ("depth", "quantity:length+", None, "DFIB@First device card", "box of the fibres along y"),
        ("width", "quantity:length+", None, "WFIB@First device card", "box of the fibres along z"),
        ("second_length", "quantity:length", None, "ELPCL@First device card", "echoed only"),
        ("molar_mass", "quantity:number+", None, "AMOLAR@First device card", "factor from nodal fluxes to mass fluxes"),
        ("molecule_diameter", "quantity:length+", None, "DMOLECULE@First device card", "diameter of the molecules"),
        ("divisions", "integers:0..", None, "NXFIB@Second device card, NYFIB@Second device card, NZFIB@Second device card",
         "divisions of the first domain along x, y, z"),
        ("second_divisions", "integer", None, "NXPCL@Second device card", "divisions of the second domain along x"),
    ]),
    ("device.degradation", "Degrading polymer of radial fibres.", [
        ("alpha", "quantity:number+", 0.0, "DEGALPHA@Degradation card", "coefficient alpha"),
        ("porosity", "quantity:number+", 0.0, "DEGIPOR@Degradation card", "initial porosity"),
        ("partition", "quantity:number+", 0.0, "DEGPART@Degradation card", "liquid-solid phase partitioning"),
        ("rate", "quantity:rate+", 0.0, "DEGRATEK@Degradation card", "rate constant k"),
        ("rate_w", "quantity:rate+", 0.0, "DEGRATEKW@Degradation card", "rate constant kw"),
        ("solid", "quantity:diffusion+", 0.0, "DIFFCDS@Degradation card", "coefficient in the solid"),
        ("liquid", "quantity:diffusion+", 0.0, "DIFFCDL@Degradation card", "coefficient in the liquid"),
    ]),
    ("device.table", "Correction table of the nanochannel: read and echoed. Without it a table of one factor of 1 is written.", "TABLE"),
    ("device.time_functions[]", "Time functions of the deck (`mode` 1 or 3 without nanochannel); files of prescribed values bring their own.", [
        ("table", "curve:time>concentration", REQUIRED, "NTABFT@Time function counts, MAXTFT@Time function counts", "values against time"),
    ]),
    ("outlet", "With a nanochannel and `mode` 1 or 3.", [
        ("concentration", "quantity:concentration", 0.0, "CONCOUT0@Outlet concentration card", "of all nodes without an equation"),
        ("mode", "integer", 1, "NPOUT2@Outlet mode card", "0 or 1; above 1 is made by `table`, negative by `coefficients`"),
        ("table", "pairs:time>concentration", None, "TIME@Time pair card, VALUE@Time pair card", "concentration against time; echoed only"),
        ("coefficients", "list:number", None, "coefficients@Outlet coefficients card", "A, B, D, E; echoed only"),
    ]),
    ("outlet.multiplier", "A factor of time on diffusion coefficients.", [
        ("groups", "integers:1..2", REQUIRED, "ITMF1@Time multiplier card, ITMF2@Time multiplier card", "1, 2 or both: the element groups that it acts on"),
        ("table", "pairs:time>number", REQUIRED, "NTMF@Time multiplier card", "factor against time; at least one pair"),
    ]),
]

TABLE_KEYS = [
    ("distances", "list:wall distance+", REQUIRED, "NDIST@Correction table sizes, factors@Correction table values", "distances from the wall, rising, in the "
     "job's unit of length as all lengths are; on the card they stand in nanometres"),
    ("concentrations", "list:concentration", REQUIRED, "NCONC@Correction table sizes, factors@Correction table values", "columns of the table"),
    ("factors", "matrix:number+", REQUIRED, "factors@Correction table values", "for every distance a row of a factor for each concentration"),
]
