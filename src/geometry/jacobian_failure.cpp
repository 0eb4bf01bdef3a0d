#include "geometry/jacobian_failure.h"

#include "core/format.h"
#include "core/language.h"
#include "core/stop.h"

namespace zurt {

namespace {

const char* Heading(int Language) {
    return Say(Language, " ** GRESKA **: JAKOBIJAN JEDNAK ILI MANJI OD NULE ZA ELEMENT No.",
               " ** ERROR **: JACOBIAN EQUAL OR LESS THEN ZERO FOR ELEMENT No.");
}

} // namespace

void StopOnJacobian3D(TextUnit& listing, int Language, std::int32_t element, std::int32_t KFIX, double r,
                      double s, double t, double determinant) {
    const bool volumePoint = KFIX < 1;
    Write(BeginMessage(listing),
          "(A,I10/6X,'KFIX=',I5/9X,'R=',D12.5/9X,'S=',D12.5/9X,'T=',D12.5/7X,'DET=',D12.5)",
          Heading(volumePoint ? kSerbian : Language), element, KFIX, r, s, t, determinant);
    StopRun(listing);
}

void StopOnJacobian2D(TextUnit& listing, int Language, std::int32_t element, double r, double s,
                      double determinant) {
    Write(BeginMessage(listing), "(A,I10/9X,'R=',D12.5/9X,'S=',D12.5/6X,'DET2=',D12.5)", Heading(Language),
          element, r, s, determinant);
    StopRun(listing);
}

void StopOnJacobian1D(TextUnit& listing, int Language, std::int32_t element, double r, double determinant) {
    Write(BeginMessage(listing), "(A,I10/9X,'R=',D12.5/6X,'DET1=',D12.5)",
          Say(Language, " ** GRESKA **: JAKOBIJAN JEDNAK ILI MANJI OD NULE ZA ELEMENT No. =",
              " ** ERROR **: JACOBIAN EQUAL OR LESS THEN ZERO FOR ELENMENT No. ="),
          element, r, determinant);
    StopRun(listing);
}

} // namespace zurt
