// What ends a forming visit: messages about curves, Jacobians and room, and numbers that could not be checked at reading.
#include "core/stop.h"
#include "form_model.h"
#include "group_deck.h"

#include <gtest/gtest.h>

namespace zurt {
namespace {

using namespace testmodel;

Mesh OneBrick() {
    return BlockOfBricks(1, 1, 1, [](int i, int j, int k) { return Point{1.0 * i, 1.0 * j, 1.0 * k}; });
}

// Forms the model with all values at `concentration`, its messages to `listing`.
void Form(const Mesh& mesh, const Problem& problem, double concentration, TextUnit* listing = nullptr,
          int Language = kEnglish) {
    zurt::Run run;
    BuildModel(run, mesh, problem);
    run.control.state.Language = Language;
    if (listing != nullptr)
        run.units.listing = *listing;
    Fill(StepSolution(run), concentration);
    testmodel::FormSystem(run);
    StopRun();
}

std::string StopOf(const Mesh& mesh, const Problem& problem, double concentration, int Language = kEnglish) {
    return ListingOfStop([&](TextUnit& listing) { Form(mesh, problem, concentration, &listing, Language); });
}

// Faults: a run that goes on past the end of a curve, and messages that name the wrong curve or argument.
TEST(FormErrors, CurvesOutOfRange) {
    Problem device;
    device.NDS = 1;
    device.NonlinearFlag = 1;
    device.conduction = {{{0.0, 1.0}, {1.0, 2.0}}, {{0.0, 1.0}, {2.0, 2.0}}};
    device.elementMaterials = {2};
    const std::string diffusion = StopOf(OneBrick(), device, -2.5);
    EXPECT_NE(diffusion.find("CURVE ARGUMENT IS OUT OF RANGE"), std::string::npos);
    EXPECT_NE(diffusion.find("DIFFUSION COEFICIENT - CONCENTRATION,  NO. =    2\n"), std::string::npos);
    EXPECT_NE(diffusion.find("CONCENTRARION,  CONC =  2.5000E+00\n"), std::string::npos) << diffusion;

    Problem plain;
    plain.NonlinearFlag = 1;
    plain.conduction = {{{0.0, 1.0}, {9.0, 2.0}}, {{0.0, 1.0}, {1.0, 2.0}}};
    plain.functions = {{1, 1, 2}};
    EXPECT_NE(StopOf(OneBrick(), plain, 3.0).find("CONCENTRATION,  NO. =    2\n"), std::string::npos);
    plain.NSTAC = 1;
    plain.capacity = {{{0.0, 1.0}, {2.0, 2.0}}};
    EXPECT_NE(StopOf(OneBrick(), plain, 3.0).find("CURVE SPECIFIC HEAT - TEMPERATURE,  No. =    1\n"),
              std::string::npos);

    Problem polynomial;
    polynomial.NonlinearFlag = 1;
    polynomial.NANLK = 1;
    polynomial.functions = {{0, 0, 0}};
    polynomial.maximum = 2.0;
    EXPECT_NE(StopOf(OneBrick(), polynomial, 3.0).find("PREKORACENA MAXIMALNA VREDNOST"), std::string::npos);
    EXPECT_NE(StopOf(OneBrick(), polynomial, -3.0).find("PREKORACENA MINIMALNA VREDNOST"), std::string::npos);
}

TEST(FormErrors, SourceOutOfRange) {
    Problem problem;
    problem.IZIP = 1;
    problem.sources = {{{0.0, 1.0}}, {{0.0, 1.0}, {1.0, 2.0}}};
    problem.elementSources = {2};
    problem.TIME = 1.5;
    EXPECT_EQ(StopOf(OneBrick(), problem, 0.0),
              " CURVE ARGUMENT IS OUT OF RANGE\n CURVE HEAT SOURCE - TIME,  No. =    2\n"
              " ARGUMENT TIME, TIME =  1.5000E+00\n");
    EXPECT_EQ(StopOf(OneBrick(), problem, 0.0, kSerbian).find(" ARGUMENT VAN OPSEGA ZADATE KRIVE\n"), 0U);
    // The mean rate is formed for every group, whether its elements have sources or not.
    problem.IZIP = 0;
    problem.sources = {{{0.0, 1.0}, {1.0, 2.0}}};
    EXPECT_NE(StopOf(OneBrick(), problem, 0.0).find("HEAT SOURCE - TIME,  No. =    1\n"), std::string::npos);
}

// Faults: an inverted element that is formed, a message without the element; the element lines of ITOR 3.
TEST(FormErrors, InvertedElement) {
    Mesh mesh = BlockOfBricks(2, 1, 1, [](int i, int j, int k) { return Point{1.0 * i, 1.0 * j, 1.0 * k}; });
    std::swap(mesh.elements[1][0], mesh.elements[1][1]);
    Problem problem;
    problem.ITOR = 3;
    const std::string text = StopOf(mesh, problem, 0.0);
    EXPECT_EQ(text.find(" ELEMENT....................       1\n ELEMENT....................       2\n"
                        " ** GRESKA **: JAKOBIJAN JEDNAK ILI MANJI OD NULE ZA ELEMENT No.         2\n"),
              0U)
        << text;
}

TEST(FormErrors, NoRoomForElementMatrices) {
    Problem problem;
    zurt::Run probe;
    BuildModel(probe, OneBrick(), problem);
    problem.size = probe.A.LMAXM + 100;
    const std::string text = StopOf(OneBrick(), problem, 0.0);
    EXPECT_EQ(
        text.find(
            " UNSUFFICIENT DIMENSION OF WORKING VECTOR A FOR\n ELEMENT MATRIX\n REQUIRED DIMENSION, LMAX ="),
        0U)
        << text;
    EXPECT_NE(text.find(" AVAILABLE DIMENSION, NTOTA="), std::string::npos);
    DestroyWorkingVector(probe.A);
}

// Faults: a number that points outside its table becomes an index.
TEST(FormErrors, NumbersCheckedBeforeForming) {
    const auto libraryError = testing::ExitedWithCode(2);
    Problem source;
    source.IZIP = 1;
    source.sources = {{{0.0, 1.0}}};
    source.elementSources = {2};
    EXPECT_EXIT(Form(OneBrick(), source, 0.0), libraryError,
                "element group 1: element 1 asks for source curve 2");

    Mesh gap = OneBrick();
    gap.elements.emplace_back(8, 0);
    EXPECT_EXIT(Form(gap, {}, 0.0), libraryError, "element group 1: element 2 has no card");

    Problem function;
    function.functions = {{0, 1, 1}};
    EXPECT_EXIT(Form(OneBrick(), function, 0.0), libraryError, "material 1 has no conduction function");
    function.functions = {{1, 2, 1}};
    EXPECT_EXIT(Form(OneBrick(), function, 0.0), libraryError, "material 1 asks for conduction function 2");

    Problem capacity;
    capacity.NSTAC = 1;
    capacity.capacity = {};
    EXPECT_EXIT(Form(OneBrick(), capacity, 0.0), libraryError, "material 1 has no capacity curve");
    capacity.NSTAC = -1;
    EXPECT_EXIT(Form(OneBrick(), capacity, 0.0), libraryError, "negative NSTAC");
}

} // namespace
} // namespace zurt
