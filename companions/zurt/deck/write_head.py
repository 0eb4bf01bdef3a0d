"""Cards of a problem's head, from the title to the time steps."""
from .card_writer import FIXED, put_card, put_comment, put_flow, put_heading
from .job_errors import job_error
from .problem_model import choice_of, is_given, setting, values_of


def has_device_cards(problem):
    """Whether the device cards stand in the deck."""
    return setting(problem, "device", "mode") != 0 and setting(problem, "device", "nanochannel") > 0


def has_time_functions(problem):
    """Whether the mode has time functions (1 and 3)."""
    return setting(problem, "device", "mode") in (1, 3)


def write_title(problem, deck):
    """Title and format card."""
    title = problem.section.values["title"]
    place = problem.section.place + ("title",)
    if "\n" in title or not title.isascii():
        raise job_error(problem.job, place, "a title is one line of plain letters (ASCII)")
    if title[:2] in ("C ", "C*", "C-") or title == "C" or title.startswith("STOP"):
        raise job_error(problem.job, place, "a title must not begin as a comment (\"C \") or with STOP")
    put_comment(deck, "Title")
    deck.lines.append(title)
    put_comment(deck, "Format card: INDFOR (1 free, 2 fixed) NDS NANOCH SolverSelector (0 skyline, 2 sparse)")
    numbers = (2 if deck.form == FIXED else 1, setting(problem, "device", "mode"), setting(problem, "device", "nanochannel"),
               choice_of(problem, "model", "solver"))
    deck.lines.append(" ".join(str(number) for number in numbers))


def write_device(problem, deck):
    """Device cards and the degradation card."""
    device = problem.section.tables["device"]
    degradation = device.tables["degradation"] if device else None
    if not has_device_cards(problem):
        if degradation:
            raise job_error(problem.job, degradation.place, "degradation needs device.mode and device.nanochannel above 0")
        return
    values = values_of(problem.section, "device")
    put_heading(deck, "First device card", "The box of the fibres; molar mass, molecule.")
    put_card(deck, "First device card", {
        "ELFIB": values["length"] or 0, "DFIB": values["depth"] or 0, "WFIB": values["width"] or 0, "ELPCL": values["second_length"] or 0,
        "AMOLAR": values["molar_mass"] or 0, "DMOLECULE": values["molecule_diameter"] or 0})
    put_heading(deck, "Second device card")
    divisions = (values["divisions"] or []) + [0, 0, 0]
    if len(divisions) not in (3, 6):
        raise job_error(problem.job, device.place + ("divisions",), "three divisions are wanted, along x, y and z")
    put_card(deck, "Second device card", {"NXFIB": divisions[0], "NYFIB": divisions[1], "NZFIB": divisions[2],
                                          "NXPCL": values["second_divisions"] or 0, "INDDEGR": int(degradation is not None)})
    if degradation:
        put_heading(deck, "Degradation card")
        names = {"alpha": "DEGALPHA", "porosity": "DEGIPOR", "partition": "DEGPART", "rate": "DEGRATEK", "rate_w": "DEGRATEKW", "solid": "DIFFCDS",
                 "liquid": "DIFFCDL"}
        put_card(deck, "Degradation card", {names[key]: value for key, value in degradation.values.items()})


def period_counts(problem):
    """(steps, sizes) of the periods of a transient problem, tested."""
    time = problem.section.tables["time"]
    steps, sizes = time.values["steps"], time.values["size"]
    if len(steps) != len(sizes):
        raise job_error(problem.job, time.place + ("size",), f"{len(steps)} periods in steps, {len(sizes)} in size")
    if any(size <= 0.0 for size in sizes):
        raise job_error(problem.job, time.place + ("size",), "steps are above 0")
    if sum(max(count, 0) for count in steps) < 1:
        raise job_error(problem.job, time.place + ("steps",), "a transient problem has at least one step")
    return steps, sizes


def end_of_run(problem):
    """Time at the end of a transient run; 0 of a steady one."""
    if not problem.section.tables["time"]:
        return 0.0
    if problem.section.tables["steady"]:
        raise job_error(problem.job, problem.section.tables["steady"].place, "a problem has [time] or [steady], not both")
    steps, sizes = period_counts(problem)
    return sum(max(count, 0) * size for count, size in zip(steps, sizes))


def write_basic(problem, deck):
    """Basic data, control and execution card."""
    time = problem.section.tables["time"]
    put_heading(deck, "Basic data card")
    put_card(deck, "Basic data card", {
        "NP": len(problem.points), "NGET": len(problem.groups) + len(problem.radial), "NMATT": len(problem.section.arrays["material"]),
        "NSTAC": int(time is not None), "NPER": len(time.values["steps"]) if time else setting(problem, "steady", "steps"),
        "NPRINT": setting(problem, "output", "listing_every"), "IANIZ": int(setting(problem, "model", "anisotropic")),
        "NULAZ": choice_of(problem, "output", "echo"), "ITOR": choice_of(problem, "model", "analogue"),
        "IGRAF": setting(problem, "output", "graphics_every"), "IDIRECTD": int(setting(problem, "homogenization", "direct"))})
    put_heading(deck, "Control card")
    put_card(deck, "Control card", {
        "INTEB": setting(problem, "iteration", "integration"), "INDSC": setting(problem, "output", "prescribed_nodes") or 0,
        "IFORM": int(setting(problem, "output", "fixed_point")), "MAXIT": setting(problem, "iteration", "largest"),
        "EPSTA": setting(problem, "iteration", "absolute") or 0, "EPSTR": setting(problem, "iteration", "relative") or 0,
        "NJRAP": setting(problem, "iteration", "method"), "IPASSPRINT": setting(problem, "homogenization", "direct_pass")})
    put_heading(deck, "Execution card", "IREST 0 checks the input and ends.")
    put_card(deck, "Execution card", {
        "IREST": 0 if setting(problem, "run", "check_only") else 1, "NCZK": setting(problem, "run", "keep_steps") or 0,
        "NCZR": setting(problem, "run", "restart_steps") or 0, "VREM0": setting(problem, "run", "restart_time") or 0,
        "PotentialFunctionSize": setting(problem, "model", "potential_words") or 0})


def write_head(problem, deck):
    """All cards ahead of the nodes."""
    write_title(problem, deck)
    write_device(problem, deck)
    if is_given(problem, "model", "anisotropic") and setting(problem, "device", "mode") and setting(problem, "model", "anisotropic"):
        problem.notes.append("model.anisotropic has no effect with device.mode: multipliers are 1")
    write_basic(problem, deck)
    if problem.section.tables["time"]:
        steps, sizes = period_counts(problem)
        put_comment(deck, "Steps of each period, and their sizes")
        put_flow(deck, "Step count cards", steps)
        put_flow(deck, "Step size cards", sizes)
