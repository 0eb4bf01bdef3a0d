#include "core/language.h"
#include "elements/jacobian_failure.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <unistd.h>

namespace zurt {
namespace {

// The listing of a run that `stop` ended, which must be with status 0.
template <class Stop> std::string ListingOf(Stop stop) {
    const std::string name =
        (std::filesystem::temp_directory_path() / ("zurt_shape_failure_" + std::to_string(getpid()) + ".lst"))
            .string();
    const auto run = [&] {
        TextUnit listing;
        OpenTextUnit(listing, name);
        stop(listing);
    };
    EXPECT_EXIT(run(), testing::ExitedWithCode(0), "^$");
    std::ostringstream text;
    text << std::ifstream(name).rdbuf();
    std::filesystem::remove(name);
    return text.str();
}

// Faults: a message lost at the stop, a stop with an error status, a volume check that follows the language, a face
// check that does not, a label or value out of place.
TEST(JacobianFailure, BrickSaysWhereItFailed) {
    const std::string values = "      KFIX=    0\n"
                               "         R= 0.50000D+00\n"
                               "         S=-0.25000D+00\n"
                               "         T= 0.00000D+00\n"
                               "       DET=-0.12500D+01\n";
    const std::string serbian =
        " ** GRESKA **: JAKOBIJAN JEDNAK ILI MANJI OD NULE ZA ELEMENT No.        42\n";
    for (int Language : {kSerbian, kEnglish})
        EXPECT_EQ(ListingOf([&](TextUnit& listing) {
                      StopOnJacobian3D(listing, Language, 42, 0, 0.5, -0.25, 0.0, -1.25);
                  }),
                  serbian + values);

    const auto headingOfFace = [](int Language) {
        const std::string text = ListingOf(
            [&](TextUnit& listing) { StopOnJacobian3D(listing, Language, 42, 3, 0.5, -0.25, 1.0, 0.0); });
        EXPECT_NE(text.find("      KFIX=    3\n"), std::string::npos);
        return text.substr(0, text.find('\n') + 1);
    };
    EXPECT_EQ(headingOfFace(kSerbian), serbian);
    EXPECT_EQ(headingOfFace(kEnglish),
              " ** ERROR **: JACOBIAN EQUAL OR LESS THEN ZERO FOR ELEMENT No.        42\n");
}

TEST(JacobianFailure, QuadrilateralAndLineFollowTheLanguage) {
    const auto plane = [](int Language) {
        return ListingOf(
            [&](TextUnit& listing) { StopOnJacobian2D(listing, Language, 7, 0.5, -0.25, 1.0e-16); });
    };
    const std::string planeValues = "         R= 0.50000D+00\n"
                                    "         S=-0.25000D+00\n"
                                    "      DET2= 0.10000D-15\n";
    EXPECT_EQ(plane(kEnglish),
              " ** ERROR **: JACOBIAN EQUAL OR LESS THEN ZERO FOR ELEMENT No.         7\n" + planeValues);
    EXPECT_EQ(plane(kSerbian),
              " ** GRESKA **: JAKOBIJAN JEDNAK ILI MANJI OD NULE ZA ELEMENT No.         7\n" + planeValues);

    const auto line = [](int Language) {
        return ListingOf([&](TextUnit& listing) { StopOnJacobian1D(listing, Language, 7, 0.5, 0.0); });
    };
    const std::string lineValues = "         R= 0.50000D+00\n"
                                   "      DET1= 0.00000D+00\n";
    EXPECT_EQ(line(kEnglish),
              " ** ERROR **: JACOBIAN EQUAL OR LESS THEN ZERO FOR ELENMENT No. =         7\n" + lineValues);
    EXPECT_EQ(line(kSerbian),
              " ** GRESKA **: JAKOBIJAN JEDNAK ILI MANJI OD NULE ZA ELEMENT No. =         7\n" + lineValues);
}

} // namespace
} // namespace zurt
