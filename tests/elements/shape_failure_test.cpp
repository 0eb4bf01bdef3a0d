#include "core/language.h"
#include "elements/jacobian_failure.h"
#include "group_deck.h"

#include <gtest/gtest.h>

namespace zurt {
namespace {

using testmodel::ListingOfStop;

const std::string kSerbianHead = " ** GRESKA **: JAKOBIJAN JEDNAK ILI MANJI OD NULE ZA ELEMENT No.";

// Faults: a message lost at the stop, a stop with an error status, a volume check that follows the language, a face
// check that does not, a label or value out of place.
TEST(JacobianFailure, SaysWhereTheElementFailed) {
    for (int Language : {kSerbian, kEnglish}) {
        const bool serbian = Language == kSerbian;
        const std::string english = " ** ERROR **: JACOBIAN EQUAL OR LESS THEN ZERO FOR ELEMENT No.";
        const std::string point = "         R= 0.50000D+00\n         S=-0.25000D+00\n";
        EXPECT_EQ(ListingOfStop([&](TextUnit& listing) {
                      StopOnJacobian3D(listing, Language, 42, 0, 0.5, -0.25, 0.0, -1.25);
                  }),
                  kSerbianHead + "        42\n      KFIX=    0\n" + point +
                      "         T= 0.00000D+00\n       DET=-0.12500D+01\n");
        EXPECT_EQ(ListingOfStop([&](TextUnit& listing) {
                      StopOnJacobian3D(listing, Language, 42, 3, 0.5, -0.25, 1.0, 0.0);
                  }).find((serbian ? kSerbianHead : english) + "        42\n      KFIX=    3\n"),
                  0U);
        EXPECT_EQ(ListingOfStop([&](TextUnit& listing) {
                      StopOnJacobian2D(listing, Language, 7, 0.5, -0.25, 1.0e-16);
                  }),
                  (serbian ? kSerbianHead : english) + "         7\n" + point + "      DET2= 0.10000D-15\n");
        EXPECT_EQ(ListingOfStop([&](TextUnit& listing) { StopOnJacobian1D(listing, Language, 7, 0.5, 0.0); }),
                  (serbian ? kSerbianHead + " ="
                           : " ** ERROR **: JACOBIAN EQUAL OR LESS THEN ZERO FOR ELENMENT No. =") +
                      "         7\n         R= 0.50000D+00\n      DET1= 0.00000D+00\n");
    }
}

} // namespace
} // namespace zurt
