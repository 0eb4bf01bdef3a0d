#include "job/header_echo.h"

#include "core/format.h"
#include "run/echo.h"

#include <string_view>

namespace zurt {

namespace {

constexpr EchoLine kFormatEcho[] = {
    ZURT_ECHO_INTEGER(HeaderFields, INDFOR, "INDIKATOR FORMATA ............................. INDFOR =",
                      "FORMAT INDICATOR .............................. INDFOR ="),
    ZURT_ECHO_REMARK("EQ.0; INDFOR = 1", "EQ.0; INDFOR = 1"),
    ZURT_ECHO_REMARK("EQ.1; SLOBODAN FORMAT", "EQ.1; FREE FORMAT"),
    ZURT_ECHO_REMARK("EQ.2; FIKSAN FORMAT, KAKO JE OPISANO", "EQ.2; FIXED FORMAT, AS DESCRIBED"),
    ZURT_ECHO_INTEGER(HeaderFields, NDS, "INDIKATOR MODELIRANJA NDS UREDJAJA.............    NDS =",
                      "INDICATOR FOR NDS DEVICE MODELING..............    NDS ="),
    ZURT_ECHO_REMARK("EQ.1; MODELIRANJE NDS UREDJAJA", "EQ.1; MODELING NDS DEVICE"),
    ZURT_ECHO_REMARK("EQ.0; BEZ MODELIRANJA NDS UREDJAJA", "EQ.0; NO NDS DEVICE MODELING"),
    ZURT_ECHO_INTEGER(HeaderFields, NANOCH, "INDIKATOR MODELIRANJA NANOKANALA.............. NANOCH =",
                      "INDICATOR FOR NANOCHANNEL MODELING............ NANOCH ="),
    ZURT_ECHO_REMARK("EQ.1; MODELIRANJE NANOKANALA BEZ REZERVOARA",
                     "EQ.1; MODELING NANOCHANNEL WITHOUT RESERVOIRS"),
    ZURT_ECHO_REMARK("EQ.2; MODELIRANJE NANOKANALA SA LEVIM REZERVOAROM",
                     "EQ.2; MODELING NANOCHANNEL WITH LEFT RESERVOIR"),
    ZURT_ECHO_REMARK("EQ.3; MODELIRANJE NANOKANALA SA LEVIM I DESNIM REZERVOAROM",
                     "EQ.3; MODELING NANOCHANNEL WITH LEFT AND RIGHT RESERVOIRS"),
    ZURT_ECHO_REMARK("EQ.0; BEZ MODELIRANJA NANOKANALA", "EQ.0; NO NANOCHANNEL MODELING"),
};

constexpr EchoLine kDeviceEcho[] = {
    ZURT_ECHO_REAL(HeaderFields, ELFIB, "DUZINA PLGA OBLASTI - X PRAVAC  ......... ELFIB =",
                   "LENGTH OF PLGA DOMAIN - X DIRECTION  .... ELFIB ="),
    ZURT_ECHO_REAL(HeaderFields, DFIB, "DUBINA OBLASTI - Y PRAVAC  .............. DFIB  =",
                   "DEPTH OF DOMAIN - Y DIRECTION  .......... DFIB  ="),
    ZURT_ECHO_REAL(HeaderFields, WFIB, "SIRINA OBLASTI - Z PRAVAC  .............. WFIB  =",
                   "WIDTH OF DOMAIN - Z DIRECTION  .......... WFIB  ="),
    ZURT_ECHO_REAL(HeaderFields, ELPCL, "DUZINA PCL OBLASTI - X PRAVAC  .......... ELPCL =",
                   "LENGTH OF PCL DOMAIN - X DIRECTION  ..... ELPCL ="),
    ZURT_ECHO_REAL(HeaderFields, AMOLAR, "MOLARNA MASA MOLEKULA KOJI DIFUNDUJU  ... AMOLAR =",
                   "MOLAR MASS OF DIFFUSING MOLECULES  ...... AMOLAR ="),
    ZURT_ECHO_REAL(HeaderFields, DMOLECULE, "PRECNIK MOLEKULA KOJI DIFUNDUJU  ........ DMOLECULE =",
                   "DIAMETER OF DIFFUSING MOLECULES  ........ DMOLECULE ="),
    ZURT_ECHO_INTEGER(HeaderFields, NXFIB, "PODELA X - PLGA OBLAST  ................. NXFIB =",
                      "DIVISION X - PLGA DOMAIN  ............... NXFIB ="),
    ZURT_ECHO_INTEGER(HeaderFields, NYFIB, "PODELA Y - .............................. NYFIB =",
                      "DIVISION Y - ............................ NYFIB ="),
    ZURT_ECHO_INTEGER(HeaderFields, NZFIB, "PODELA Z - .............................. NZFIB =",
                      "DIVISION Z - ............................ NZFIB ="),
    ZURT_ECHO_INTEGER(HeaderFields, NXPCL, "PODELA X - PCL OBLAST  .................. NXPCL =",
                      "DIVISION X - PCL DOMAIN  ................ NXPCL ="),
    ZURT_ECHO_INTEGER(HeaderFields, INDDEGR, "DEGRADACIJA (0 - ISKLJUCENA, 1 - UKLJUCENA INDDEGR =",
                      "DEGRADATION (0 - DISABLED, 1 - ENABLED... INDDEGR ="),
};

constexpr EchoLine kDegradationEcho[] = {
    ZURT_ECHO_REAL(HeaderFields, DEGALPHA, "KOEFICIJENT ALFA ....................... DEGALPHA =",
                   "COEFFICIENT ALPHA ...................... DEGALPHA ="),
    ZURT_ECHO_REAL(HeaderFields, DEGIPOR, "POCETNA POROZNOST CVRSTE FAZE .......... DEGIPOR  =",
                   "INITAL POROSITY OF SOLID   ............. DEGIPOR  ="),
    ZURT_ECHO_REAL(HeaderFields, DEGPART, "PARTICIJA TECNE I CVRSTE FAZE .......... DEGPART  =",
                   "LIQUID-SOLID PHASE PARTITIONING  ....... DEGPART  ="),
    ZURT_ECHO_REAL(HeaderFields, DEGRATEK, "KONSTANTA BRZINE DEGRADACIJE K ......... DEGRATEK =",
                   "DEGRADATION RATE CONSTANT K  ........... DEGRATEK ="),
    ZURT_ECHO_REAL(HeaderFields, DEGRATEKW, "KONSTANTA BRZINE DEGRADACIJE Kw ....... DEGRATEKW =",
                   "DEGRADATION RATE CONSTANT Kw .......... DEGRATEKW ="),
    ZURT_ECHO_REAL(HeaderFields, DIFFCDS, "KOEFICIJENT DIFUZIJE U CVRSTOJ FAZI ..... DIFFCDS =",
                   "DIFFUSION COEFFICIENT IN SOLID .......... DIFFCDS ="),
    ZURT_ECHO_REAL(HeaderFields, DIFFCDL, "KOEFICIJENT DIFUZIJE U TECNOJ FAZI ...... DIFFCDL =",
                   "DIFFUSION COEFFICIENT IN LIQUID ......... DIFFCDL ="),
};

constexpr EchoLine kBasicDataEcho[] = {
    ZURT_ECHO_INTEGER(HeaderFields, NP, "UKUPAN BROJ CVORNIH TACAKA ........................ NP =",
                      "TOTAL NUMBER OF NODAL POINTS ...................... NP ="),
    ZURT_ECHO_REMARK("EQ.0; PREKIDA SE PROGRAM", "EQ.0; PROGRAM STOP"),
    ZURT_ECHO_INTEGER(HeaderFields, NGET, "BROJ GRUPA ELEMENATA ............................ NGET =",
                      "NUMBER OF ELEMENT GROUPS ........................ NGET ="),
    ZURT_ECHO_REMARK("EQ.0; POSTAJE \"1\"", "EQ.0; DEFAULT SET \"1\""),
    ZURT_ECHO_INTEGER(HeaderFields, NMATT, "BROJ RAZLICITIH MATERIJALA ..................... NMATT =",
                      "NUMBER OF DIFERENT MATERIALS ................... NMATT ="),
    ZURT_ECHO_INTEGER(HeaderFields, NSTAC, " INDIKATOR STACIONARNOSTI....................... NSTAC =",
                      " INDICATOR FOR STEADY FLOW...................... NSTAC ="),
    ZURT_ECHO_REMARK("EQ.0; STACIONARNO STANJE", "EQ.0; STEADY STATE"),
    ZURT_ECHO_REMARK("EQ.1; NESTACIONARNO", "EQ.1; TRANSIENT"),
    ZURT_ECHO_INTEGER(HeaderFields, NPER, "BROJ PERIODA SA KONSTANTNIM KORAKOM .............. NPER =",
                      "NUMBER OF CONSTANT TIME STEP PERIODS ............ NPER ="),
    ZURT_ECHO_REMARK("EQ.0; POSTAJE \"1\"; (NAJVISE 16 PERIODA)",
                     "EQ.0; DEFAULT SET \"1\"; (MAX. 16 PERIODS)"),
    ZURT_ECHO_INTEGER(HeaderFields, NPRINT, "KORAK STAMPANJA REZULTATA U LISTING ........... NPRINT =",
                      "OUTPUT PRINTING INTERVAL IN OUTPUT FILE........ NPRINT ="),
    ZURT_ECHO_REMARK("EQ.-1; REZULTATI SE NE STAMPAJU", "EQ.-1; RESULTS NOT PRINTED"),
    ZURT_ECHO_REMARK("EQ.1; STAMPA SE SVAKI KORAK", "EQ.1; EACH STEP PRINTED"),
    ZURT_ECHO_REMARK("GT.1; BROJ KORAKA IZMEDJU STAMPANJA", "GT.1; STEP NUMBER TO BE PRINTED"),
    ZURT_ECHO_REMARK(" NPR. EQ.3 - STAMPA SE SVAKI TRECI KORAK", " E.G. EQ.3 - EACH THIRD STEP PRINTED"),
    ZURT_ECHO_INTEGER(HeaderFields, IANIZ, "INDIKATOR ANIZOTROPIJE ......................... IANIZ =",
                      "ANISOTROPIC FLAG ............................... IANIZ ="),
    ZURT_ECHO_REMARK("EQ.0; IZOTROPAN MATERIJAL", "EQ.0; ISOTROPIC MATERIJAL"),
    ZURT_ECHO_REMARK("EQ.1; ANIZOTROPAN MATERIJAL", "EQ.1; ANISOTROPIC MATERIJAL"),
    ZURT_ECHO_INTEGER(HeaderFields, NULAZ, "VRSTA STAMPANJA ULAZNIH PODATAKA ............... NULAZ =",
                      "KIND OF PRINTOUT OF THE INPUT DATA ............. NULAZ ="),
    ZURT_ECHO_REMARK("EQ.1; STAMPAJU SE KARTICE, UCITANI I GENERISANI PODACI",
                     "EQ.1; CARD IMAGE, INPUT DATA READ AND GENERATED ARE PRINTED"),
    ZURT_ECHO_REMARK("EQ.2; STAMPAJU SE KARTICE", "EQ.2; CARD IMAGE PRINTED"),
    ZURT_ECHO_REMARK("EQ.3; STAMPAJU SE UCITANI I GENERISANI PODACI",
                     "EQ.3; INPUT DATA READ AND GENERATED ARE  PRINTED"),
    ZURT_ECHO_INTEGER(HeaderFields, ITOR, "INDIKATOR ZA RESAVANJE ANALOGNIH PROBLEMA ... ITOR =",
                      "INDICATOR FOR SOLVING    ANALOG PROBLEMS .... ITOR ="),
    ZURT_ECHO_REMARK("EQ.0; NE RESAVAJU SE", "EQ.0; NOT SOLVING"),
    ZURT_ECHO_REMARK("EQ.1; TORZIONA KRUTOST KVADRATNOG VRATILA",
                     "EQ.1; SOLVING TORSIONAL RIGIDITY OF A SQUARE SHAFT"),
    ZURT_ECHO_REMARK("EQ.2;", "EQ.2;"),
    ZURT_ECHO_REMARK("EQ.3; POTENCIJALNO STRUJANJE", "EQ.3; SOLVING POTENTIAL FLOW"),
    ZURT_ECHO_INTEGER(HeaderFields, IGRAF, "INDIKATOR GRAFICKE DATOTEKE .................... IGRAF =",
                      "INDICATOR FOR GRAPHICS FILE .................... IGRAF ="),
    ZURT_ECHO_REMARK("EQ.-1; NE FORMIRA SE", "EQ.-1; NOT FORMED"),
    ZURT_ECHO_REMARK("EQ.1; UPISUJE SE SVAKI KORAK", "EQ.1; EACH STEP WRITTEN IN GRAPHICS FILE"),
    ZURT_ECHO_REMARK("GT.1; BROJ KORAKA IZMEDJU UPISA", "GT.1; STEP NUMBER TO BE WRITTEN IN GRAPHICS FILE"),
    ZURT_ECHO_INTEGER(HeaderFields, IDIRECTD,
                      "INDIKATOR DIREKTNOG RACUNANJA EFEKTIVNOG KOEFICIJENTA, IDIRECTD=",
                      "FLAG FOR DIRECT CALCULATION OF EFFECTIVE DIFF COEFFICIENT, IDIRECTD="),
    ZURT_ECHO_REMARK("EQ.0 - NE RACUNA SE", "EQ.0 - NOT CALCULATED"),
    ZURT_ECHO_REMARK("EQ.1      RACUNA SE", "EQ.1       CALCULATED"),
};

constexpr EchoLine kControlEcho[] = {
    ZURT_ECHO_INTEGER(HeaderFields, INTEB, "METOD VREMENSKE INTEGRACIJE .................... INTEB =",
                      "TIME INTEGRATION METHOD USED ................... INTEB ="),
    ZURT_ECHO_REMARK("EQ.1; OJLEROVA INTEGRACIJA UNAZAD (ALFA = 1)",
                     "EQ.1; EULER BACKWARD INTEGRATION (ALPHA = 1)"),
    ZURT_ECHO_INTEGER(HeaderFields, INDSC, "STAMPANJE REZULTATA U ZADATIM CVOROVIMA ........ INDSC =",
                      "PRINT OF RESULTS IN PRESCRIBED NODES ........... INDSC ="),
    ZURT_ECHO_REMARK("EQ.0; U SVIM CVOROVIMA", "EQ.0; IN ALL NODES"),
    ZURT_ECHO_REMARK("EQ.1; U ZADATIM CVOROVIMA", "EQ.1; IN PRESCRIBED NODES"),
    ZURT_ECHO_INTEGER(HeaderFields, IFORM, "STAMPANJE REZULTATA U ZADATOM FORMATU .......... IFORM =",
                      "PRINT OF RESULTS IN PRESCRIBED FORMAT .......... IFORM ="),
    ZURT_ECHO_REMARK("EQ.0; U FORMATU  D13.5", "EQ.0; IN FORMAT  D13.5"),
    ZURT_ECHO_REMARK("EQ.1; U FORMATU  F10.3", "EQ.1; IN FORMAT  F10.3"),
    ZURT_ECHO_INTEGER(HeaderFields, MAXIT, "NAJVECI BROJ ITERACIJA ......................... MAXIT =",
                      "MAXIMUM NUMBER OF ITERATIONS ................... MAXIT ="),
    ZURT_ECHO_REAL(HeaderFields, EPSTA, "APSOLUTNA TACNOST U ITERACIJAMA ......... EPSTA =",
                   "APSOLUTE ACCURACY AT ITERATIONS ......... EPSTA ="),
    ZURT_ECHO_REAL(HeaderFields, EPSTR, "RELATIVNA TACNOST U ITERACIJAMA ........ EPSTR =",
                   "RELATIVE ACCURACY AT ITERATIONS ........ EPSTR ="),
    ZURT_ECHO_REMARK("EQ.0; POSTAJE \"1.E-3\"", "EQ.0; DEFAULT SET \"1.E-3\""),
    ZURT_ECHO_INTEGER(HeaderFields, NJRAP, "METOD ITERACIJA ................................ NJRAP =",
                      "ITERATION METHODS EMPLOYED ..................... NJRAP ="),
    ZURT_ECHO_REMARK("EQ.1; MODIFIKOVAN NJUTNOV", "EQ.1; MODIFIED NEWTON"),
    ZURT_ECHO_REMARK("EQ.2; PUN NJUTNOV", "EQ.2; FULL NEWTON"),
    ZURT_ECHO_INTEGER(HeaderFields, IPASSPRINT, "RESENJA KOJA SE UPISUJU U UNV DATOTEKU .... IPASSPRINT=",
                      "SOLUTIONS WRITEN IN UNV FILE ................... IPASSPRINT="),
    ZURT_ECHO_REMARK("EQ.1; PRVI PROLAZ - MIKROSTRUKTURNI MODEL", "EQ.1; FIRST PASS - MICROSTRUCTURAL MODEL"),
    ZURT_ECHO_REMARK("EQ.2; DRUGI PROLAZ - MODEL KONTINUUMA", "EQ.2; SECOND PASS - CONTINUUM MODEL "),
};

constexpr EchoLine kExecutionEcho[] = {
    ZURT_ECHO_INTEGER(HeaderFields, IREST, "INDIKATOR IZVRSAVANJA .......................... IREST =",
                      "INDICATOR FOR JOB EXECUTION .................... IREST ="),
    ZURT_ECHO_REMARK("EQ.0; PROVERA ULAZNIH PODATAKA", "EQ.0; CHECK OF INPUT DATA"),
    ZURT_ECHO_REMARK("EQ.1; IZVRSAVANJE", "EQ.1; JOB EXECUTION"),
    ZURT_ECHO_REMARK("EQ.2; RESTART", "EQ.2; RESTART"),
    ZURT_ECHO_INTEGER(HeaderFields, NCZK, "BROJ ZADNJIH KORAKA KOJI SE ZAPISUJU ............ NCZK =",
                      "NUMBER OF LAST WRITE STEP ....................... NCZK ="),
    ZURT_ECHO_REMARK("EQ.0; ZAPISUJU SE SVI KORACI", "EQ.0; WRITE ALL STEPS"),
    ZURT_ECHO_INTEGER(HeaderFields, NCZR, "BROJ RANIJE ZAPISANIH KORAKA NA DISKU............ NCZR =",
                      "NUMBER OF PREWRITED LAST STEPS ON THE DISK....... NCZR ="),
    ZURT_ECHO_REMARK("PRI RESTARTU MORA BITI JEDNAK \"NCZK\" IZ RANIJEG RESAVANJA",
                     "AT RESTART MUST BE EQUAL \"NCZK\" FROM EARLIER SOLVING"),
    ZURT_ECHO_REAL(HeaderFields, VREM0, "VREME POCETKA IZVRSAVANJA ................ VREM0 =",
                   "TIME OF START JOB EXECUTION ............... VREM0 ="),
    ZURT_ECHO_REMARK("GT.0; ZA RESTART", "GT.0; FOR RESTART"),
};

void EchoTitle(Run& run) {
    TextUnit& listing = run.units.listing;
    Write(listing, "(1X,78('*')/)");
    Write(listing, "(1X,A)", std::string_view(run.control.header.title, kTitleLength));
    Write(listing, "(/1X,78('*'))");
}

void EchoBlockTitle(Run& run, const char* serbian, const char* english) {
    Write(run.units.listing, "(/6X,A/)", Say(run, serbian, english));
}

} // namespace

void EchoHeaderCards(Run& run, std::int32_t titleCard, std::int32_t formatCard) {
    const HeaderFields& header = run.control.header;
    const std::int32_t current = run.deck.CardCounter;
    run.deck.CardCounter = titleCard; // each heading names one card of the block
    PrintCardNumber(run, titleCard, 1);
    EchoTitle(run);
    if (header.NDS != 0 && header.NANOCH > 0) {
        WriteEcho(run, kDeviceEcho, &header);
        if (header.INDDEGR == 1)
            WriteEcho(run, kDegradationEcho, &header);
    }
    run.deck.CardCounter = formatCard;
    PrintCardNumber(run, formatCard, 0);
    WriteEcho(run, kFormatEcho, &header);
    run.deck.CardCounter = current;
    PrintCardNumber(run, current, 0);
    EchoBlockTitle(run, "O S N O V N I    P O D A C I    O   P R O B L E M U",
                   "B A S I C    D A T A    F O R   T H E   P R O B L E M");
    WriteEcho(run, kBasicDataEcho, &header);
}

void EchoControlCard(Run& run) {
    PrintCardNumber(run, run.deck.CardCounter, 1);
    WriteEcho(run, kControlEcho, &run.control.header);
}

void EchoExecutionCard(Run& run) {
    PrintCardNumber(run, run.deck.CardCounter, 0);
    WriteEcho(run, kExecutionEcho, &run.control.header);
}

} // namespace zurt
