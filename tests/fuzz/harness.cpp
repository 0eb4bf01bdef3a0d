#include "fuzz/harness.h"

#include "core/stop.h"
#include "fuzz/ticks.h"
#include "homogenization/recorded_pass.h"
#include "input/card.h"
#include "job/read_problem.h"
#include "job/solve_problem.h"
#include "microscale/fibre_data.h"
#include "run/banner.h"
#include "run/files.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <new>

#if defined(__x86_64__)
#include <pmmintrin.h>
#include <xmmintrin.h>
#endif

namespace zurt_fuzz {

namespace {

using zurt::Run;

constexpr zurt::Word kWords = 200000;

// As the driver does it.
void FlushDenormalsToZero() {
#if defined(__x86_64__)
    _MM_SET_FLUSH_ZERO_MODE(_MM_FLUSH_ZERO_ON);
    _MM_SET_DENORMALS_ZERO_MODE(_MM_DENORMALS_ZERO_ON);
#endif
}

/// What all jobs of the process share: a folder, as a rule in memory, and two streams.
struct Place {
    std::string folder;
    std::FILE* stepFile = nullptr;
    std::FILE* console = std::fopen("/dev/null", "w");

    Place() {
        const char* wanted = std::getenv("ZURT_FUZZ_FOLDER");
        for (const char* parent : {wanted, "/dev/shm", "/tmp"}) {
            std::string name = std::string(parent == nullptr ? "" : parent) + "/zurt-fuzz-XXXXXX";
            if (stepFile != nullptr || parent == nullptr || mkdtemp(name.data()) == nullptr)
                continue;
            folder = name + "/";
            stepFile = std::fopen((folder + "steps").c_str(), "w+b");
        }
        if (stepFile == nullptr || console == nullptr) {
            std::fputs("no folder for the files of the jobs\n", stderr);
            std::abort();
        }
    }
    ~Place() {
        std::error_code ignored;
        std::filesystem::remove_all(folder, ignored);
    }
    Place(const Place&) = delete;
    Place& operator=(const Place&) = delete;
};

void StartUp(Run& run, std::string_view deck) {
    static Place place;
    FlushDenormalsToZero();
    zurt::CreateWorkingVector(run.A, kWords);
    run.job.Language = zurt::kEnglish;
    run.units.dialogue = false;
    run.units.Folder = place.folder;
    run.units.DefaultListingName = place.folder + "listing";
    run.units.DefaultGraphicsName = place.folder + "graphics";
    run.units.stepFile = place.stepFile;
    zurt::AttachTextUnit(run.units.console, place.console, "the console");
    run.deck.name = "deck";
    run.deck.bytes.reset(new char[deck.size() + 1]);
    std::memcpy(run.deck.bytes.get(), deck.data(), deck.size());
    run.deck.size = static_cast<zurt::Word>(deck.size());
}

std::size_t SizeOf(zurt::TextUnit& unit) {
    if (!zurt::IsOpen(unit))
        return 0;
    zurt::FlushTextUnit(unit);
    return static_cast<std::size_t>(std::ftell(unit.file));
}

/// The job of the driver. False at the end of a check run.
bool RunProblems(Run& run, Job& job) {
    while (true) {
        Problem problem;
        problem.listing.begin = SizeOf(run.units.listing);
        problem.graphics.begin = SizeOf(run.units.graphics);
        zurt::ReadProblem(run);
        if (run.control.header.IREST == 0) {
            zurt::WriteCheckReport(run);
            return false;
        }
        zurt::SolveProblem(run);
        zurt::FreeFibreModel(run.fibres);
        zurt::WriteExecutionReport(run);
        problem.listing.end = SizeOf(run.units.listing);
        problem.graphics.end = SizeOf(run.units.graphics);
        problem.INDFOR = run.control.header.INDFOR;
        problem.NDT = run.control.counts.NDT;
        // A fit has results of its own, or none.
        problem.asksForResults = run.control.header.NPRINT >= 0 && !zurt::RunsSeveralTimes(run);
        problem.listsCards = run.control.header.NULAZ == 1 || run.control.header.NULAZ == 2;
        problem.leavesOutlet = run.control.outlet.OutletEnd != 0.0;
        job.problems.push_back(problem);
        zurt::CardBuffer card;
        zurt::ReadCard(run.deck, run.control.header.INDFOR, "Card behind the problem", card);
        if (zurt::Image(card).substr(0, 4) == "STOP") {
            job.bytesRead = static_cast<std::size_t>(run.deck.found.begin);
            return true;
        }
    }
}

End EndOf(const zurt::RunStop& stop) {
    if (stop.kind == zurt::StopKind::Interrupt)
        return End::OutOfTicks;
    return stop.kind == zurt::StopKind::Message ? End::Stopped : End::Failed;
}

std::string ContentOf(const zurt::TextUnit& unit) {
    std::ifstream file(unit.name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void CleanUp(Run& run) {
    zurt::Units& units = run.units;
    for (zurt::TextUnit* unit :
         {&units.listing, &units.graphics, &units.massX, &units.massY, &units.massZ, &units.messages})
        zurt::CloseTextUnit(*unit);
    zurt::FreeFibreModel(run.fibres);
    zurt::DestroyWorkingVector(run.A);
}

} // namespace

Job RunJob(std::string_view deck, std::int64_t ticks) {
    const std::unique_ptr<Run> run = std::make_unique<Run>();
    Job job;
    AllowTicks(ticks);
    try {
        StartUp(*run, deck);
        job.end = RunProblems(*run, job) ? End::Finished : End::Checked;
    } catch (const zurt::RunStop& stop) {
        job.end = EndOf(stop);
        job.reason = stop.text;
    } catch (const std::bad_alloc&) {
        job.reason = "no memory left";
    }
    CleanUp(*run);
    if (job.end == End::Finished) {
        job.listing = ContentOf(run->units.listing);
        job.graphics = ContentOf(run->units.graphics);
    }
    return job;
}

} // namespace zurt_fuzz
