"""Cards of a problem's head: format, device, basic data, control, execution, time steps."""

HEADER_CARDS = {
    "Format card": [("INDFOR", "I5", "1"), ("NDS", "I5"), ("NANOCH", "I5"), ("SolverSelector", "I5")],
    "First device card": [
        ("ELFIB", "D10.4", "", "length"), ("DFIB", "D10.4", "", "length"), ("WFIB", "D10.4", "", "length"), ("ELPCL", "D10.4", "", "length"),
        ("AMOLAR", "D10.4"), ("DMOLECULE", "D10.4", "", "length")],
    "Second device card": [("NXFIB", "I5"), ("NYFIB", "I5"), ("NZFIB", "I5"), ("NXPCL", "I5"), ("INDDEGR", "I5")],
    "Degradation card": [
        ("DEGALPHA", "D10.4"), ("DEGIPOR", "D10.4"), ("DEGPART", "D10.4"), ("DEGRATEK", "D10.4", "", "rate"),
        ("DEGRATEKW", "D10.4", "", "rate"), ("DIFFCDS", "D10.4", "", "diffusion"), ("DIFFCDL", "D10.4", "", "diffusion")],
    "Basic data card": [
        ("NP", "I10"), ("NGET", "I5", "1"), ("NMATT", "I5", "1"), ("NSTAC", "I5"), ("NPER", "I5", "1"), ("NPRINT", "I5", "1"), ("IANIZ", "I5"),
        ("NULAZ", "I5", "1"), ("ITOR", "I5"), ("IGRAF", "I5", "1"), ("IDIRECTD", "I5")],
    "Control card": [
        ("INTEB", "I5", "1"), ("INDSC", "I5"), ("IFORM", "I5"), ("MAXIT", "I5", "15"), ("EPSTA", "F10.2", "", "concentration"),
        ("EPSTR", "F10.2", "0.001"), ("NJRAP", "I5", "1"), ("IPASSPRINT", "I5")],
    "Execution card": [("IREST", "I5"), ("NCZK", "I5"), ("NCZR", "I5"), ("VREM0", "E15.8", "", "time"), ("PotentialFunctionSize", "I5")],
    "Step count cards": [("NKDT", "9I10")],
    "Step size cards": [("DTDT", "9D10.4", "", "time")],
}
