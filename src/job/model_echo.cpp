// Echo of the group card, the material header and the general boundary card.
#include "core/format.h"
#include "job/header_echo.h"
#include "run/echo.h"

namespace zurt {

namespace {

constexpr EchoLine kTypeRemarks[] = {
    ZURT_ECHO_REMARK("EQ.1; IZOPARAMETARSKI 1D ELEMENT ", "EQ.1; ISOPARAMETRIC 1D ELEMENT "),
    ZURT_ECHO_REMARK("EQ.2; IZOPARAMETARSKI 2D ELEMENT U RAVNI X-Y",
                     "EQ.2; ISOPARAMETRIC 2D ELEMENT IN PLANE X-Y"),
    ZURT_ECHO_REMARK("EQ.3; IZOPARAMETARSKI 3D ELEMENT", "EQ.3; ISOPARAMETRIC 3D ELEMENT"),
};

constexpr EchoLine kGroupEcho[] = {
    ZURT_ECHO_REMARK("GT.0; ", "GT.0; "),
    ZURT_ECHO_INTEGER(ElementGroup, INDAX, "INDIKATOR OSNOSIMETRICNIH ELEMENATA ............ INDAX =",
                      "INDICATOR FOR AXISYMETRIC ELEMENTS  ............ INDAX ="),
    ZURT_ECHO_REMARK("(UCITAVA SE SAMO ZA 2D ELEMENTE)", "(READING ONLY FOR  2D ELEMENATS)"),
    ZURT_ECHO_REMARK("EQ.0; 2/D U RAVNI", "EQ.0; 2/D IN PLANE"),
    ZURT_ECHO_REMARK("EQ.1; OSNOSIMETRICNI ", "EQ.1; AXISYMETRIC "),
    ZURT_ECHO_INTEGER(ElementGroup, IZIP, "INDIKATOR ZAPREMINSKOG IZVORA ...... ............ IZIP =",
                      "INDICATOR FOR VOLUME. SOURCE ...... ............. IZIP ="),
    ZURT_ECHO_REMARK("EQ.0; NEMA ZAPREMINSKOG IZVORA", "EQ.0; THERE IS NOT VOLUMETRIC SOURCE"),
    ZURT_ECHO_REMARK("EQ.1; IZVORI SU FUNKCIJE VREMENA", "EQ.1; VOL SOURCES ARE FUNCTION OF TIME"),
    ZURT_ECHO_REMARK("EQ.2; IZVORI SU FUNKCIJE KONCENTRACIJE",
                     "EQ.2; VOL SOURCES ARE FUNCTION OF CONCENTRATION"),
    ZURT_ECHO_INTEGER(ElementGroup, ISUB4, "PARAMETAR PODSTRUKTURE ZA RADIJALNE 1D ELEMENTE.. ISUB4=",
                      "SUBSTRUCTURING PARAMETER FOR RADIAL 1D ELEMENTS.. ISUB4="),
    ZURT_ECHO_REMARK("EQ.1 -- SA PODSTRUKTUROM,  EQ.0 -- BEZ PODSTRUKTURE",
                     "EQ.1 -- WITH SUBSTRUCTURING,  EQ.0 -- NO SUBSTRUCTURING"),
    ZURT_ECHO_INTEGER(ElementGroup, IND4N, "ZAJEDNICKI CVOROVI PODSTRUKTURE I KONTINUUMA.... IND4N=",
                      "COMMON NODES BETWEEN SUBSTRUCTURE AND CONTINUUM.. IND4N="),
    ZURT_ECHO_REMARK("EQ.0 -- 1 CVOR,EQ.1 -- 4 CVORA, EQ.2 -- 8 CVOROVA",
                     "EQ.0 -- 1 NODE,EQ.1 -- 4 NODES, EQ.2 -- 8 NODES"),
};

constexpr EchoLine kMaterialHeaderEcho[] = {
    ZURT_ECHO_INTEGER(CurveCounts, NANLK, "BROJ FUNKCIJA DATIH U ANALITICKOM OBLIKU ....... NANLK =",
                      "NUMBER OF FUNCTIONS GIVEN IN ANALITICAL FORM ... NANLK ="),
    ZURT_ECHO_INTEGER(CurveCounts, NTABK, "BROJ FUNKCIJA DATIH TABELARNO .................. NTABK =",
                      "NUMBER OF FUNCTIONS GIVEN IN TABULAR FORM ...... NTABK ="),
    ZURT_ECHO_REMARK("EQ.0; SVE SU ANALITICKE", "EQ.0; ALL ARE ANALITICAL"),
    ZURT_ECHO_INTEGER(CurveCounts, MAXTK, "NAJVECI BROJ TACAKA JEDNE FUNKCIJE ............. MAXTK =",
                      "MAXIMUM NUMBER OF POINTS OF ONE FUNCTION ....... MAXTK ="),
    ZURT_ECHO_REMARK("EQ.1; KONSTANTNI KOEFICIJENTI", "EQ.1; CONSTANT COEFFICIENTS"),
    ZURT_ECHO_INTEGER(CurveCounts, NANLC, "BROJ FUNKCIJA DATIH U ANALITICKOM OBLIKU ....... NANLC =",
                      "NUMBER OF FUNCTIONS GIVEN IN ANALITICAL FORM ... NANLC ="),
    ZURT_ECHO_INTEGER(CurveCounts, NTABC, "BROJ FUNKCIJA DATIH TABELARNO .................. NTABC =",
                      "NUMBER OF FUNCTIONS GIVEN IN TABULAR FORM ...... NTABC ="),
    ZURT_ECHO_INTEGER(CurveCounts, MAXTC, "NAJVECI BROJ TACAKA JEDNE FUNKCIJE ............. MAXTC =",
                      "MAXIMUM NUMBER OF POINTS OF ONE FUNCTION ....... MAXTC ="),
};

constexpr EchoLine kDeviceMaterialEcho[] = {
    ZURT_ECHO_INTEGER(CurveCounts, MAXPMAT, "NAJVECI BROJ PAROVA \"KONCENTRACIJA-KOEF DIF\" ...MAXPMAT =",
                      "MAXIMUM NUMBER OF PAIRS \"COCENTRATION-DIFF COEFF\" ...MAXPMAT ="),
};

constexpr EchoLine kBoundaryEcho[] = {
    ZURT_ECHO_INTEGER(CurveCounts, NPOC, "UKUPAN BROJ RAZLICITIH POCETNIH KONCENTRACIJA .... NPOC =",
                      "TOTAL NUMBER OF DIFERENT INITIAL CONCENTRATIONS.. NPOC ="),
    ZURT_ECHO_REMARK("EQ.0; LINEARNO STACIONARNO STANJE", "EQ.0; LINEAR STEADY STATE"),
    ZURT_ECHO_REMARK("EQ.1; SVE POCETNE KONCENTRACIJE SU ISTE",
                     "EQ.1; ALL INITIAL CONCENTRATIONS ARE THE SAME"),
    ZURT_ECHO_REMARK("EQ.2; POCETNE KONCENTRACIJE SU RAZLICITE", "EQ.2; INITIAL CONCENTRATIONS ARE DIFERENT"),
    ZURT_ECHO_INTEGER(CurveCounts, NQP, "BROJ FUNKCIJA POVRSINSKOG FLUKSA KONCENTRACIJE .... NQP =",
                      "NUMBER OF CONCENTRATION FLUX FUNCTIONS ............ NQP ="),
    ZURT_ECHO_INTEGER(CurveCounts, MAXTQP, "NAJVECI BROJ TACAKA JEDNE FUNKCIJE ............. MAXTQP =",
                      "MAXIMUM NUMBER OF POINTS OF ONE FUNCTION ....... MAXTQP ="),
    ZURT_ECHO_INTEGER(CurveCounts, NHP, "BROJ FUNKCIJA KONVEKCIJE .......................... NHP =",
                      "NUMBER OF CONVECTION FUNCTIONS .................... NHP ="),
    ZURT_ECHO_INTEGER(CurveCounts, MAXTHP, "NAJVECI BROJ TACAKA JEDNE FUNKCIJE ............. MAXTHP =",
                      "MAXIMUM NUMBER OF POINTS OF ONE FUNCTION ....... MAXTHP ="),
    ZURT_ECHO_INTEGER(CurveCounts, NTOK, "BROJ FUNKCIJA OKOLINE ............................ NTOK =",
                      "NUMBER OF ENVIRONMENT FUNCTIONS .................. NTOK ="),
    ZURT_ECHO_INTEGER(CurveCounts, MAXTOK, "NAJVECI BROJ TACAKA JEDNE FUNKCIJE ............. MAXTOK =",
                      "MAXIMUM NUMBER OF POINTS OF ONE FUNCTION ....... MAXTOK ="),
    ZURT_ECHO_INTEGER(CurveCounts, NQE, "BROJ FUNKCIJA ZAPREMINSKIH IZVORA ................. NQE =",
                      "NUMBER OF VOLUME SOURCE FUNCTIONS ................. NQE ="),
    ZURT_ECHO_INTEGER(CurveCounts, MAXTQE, "NAJVECI BROJ TACAKA JEDNE FUNKCIJE ............. MAXTQE =",
                      "MAXIMUM NUMBER OF POINTS OF ONE FUNCTION ....... MAXTQE ="),
    ZURT_ECHO_INTEGER(CurveCounts, NHR, "BROJ FUNKCIJA ZRACENJA ............................ NHR =",
                      "NUMBER OF RADIATION FUNCTIONS ..................... NHR ="),
    ZURT_ECHO_INTEGER(CurveCounts, MAXTHR, "NAJVECI BROJ TACAKA JEDNE FUNKCIJE ............. MAXTHR =",
                      "MAXIMUM NUMBER OF POINTS OF ONE FUNCTION ....... MAXTHR ="),
};

} // namespace

void EchoGroupCard(Run& run, const ElementGroup& group, std::int32_t first) {
    TextUnit& listing = run.units.listing;
    PrintCardNumber(run, first, 1);
    static const Format groupLine("(/6X,A,I6,A,I5)");
    Write(listing, groupLine, Say(run, "VRSTA ELEMENATA GRUPE ", "ELEMENT TYPE FOR GROUP "), group.NGE,
          " .................. NETIP =", group.NETIP);
    WriteEcho(run, kTypeRemarks, &group);
    Write(listing, groupLine, Say(run, "BROJ ELEMENATA U GRUPI ", "NUMBER OF ELEMENTS IN THE GROUP "),
          group.NGE, " ........... NET =", group.NET);
    WriteEcho(run, kGroupEcho, &group);
}

void EchoMaterialHeader(Run& run, std::int32_t first) {
    PrintCardNumber(run, first, 1);
    if (run.control.header.NDS == 0)
        WriteEcho(run, kMaterialHeaderEcho, &run.control.counts);
    else
        WriteEcho(run, kDeviceMaterialEcho, &run.control.counts);
}

void EchoBoundaryCard(Run& run, std::int32_t first) {
    PrintCardNumber(run, first, 1);
    WriteEcho(run, kBoundaryEcho, &run.control.counts);
}

} // namespace zurt
