#include "run/banner.h"

#include "core/format.h"

namespace zurt {

namespace {

// The program's name in block letters, each drawn with copies of itself.
constexpr const char* kBlockLetters[10] = {
    "ZZZZZZZZZZZ   UU       UU   RRRRRRRRR     TTTTTTTTTTT",
    "ZZZZZZZZZZZ   UU       UU   RRRRRRRRRR    TTTTTTTTTTT",
    "        ZZZ   UU       UU   RR      RR        TTT    ",
    "       ZZZ    UU       UU   RR      RR        TTT    ",
    "      ZZZ     UU       UU   RRRRRRRRRR        TTT    ",
    "     ZZZ      UU       UU   RRRRRRRRR         TTT    ",
    "    ZZZ       UU       UU   RR    RR          TTT    ",
    "   ZZZ        UUU     UUU   RR     RR         TTT    ",
    "ZZZZZZZZZZZ    UUUUUUUUU    RR      RR        TTT    ",
    "ZZZZZZZZZZZ     UUUUUUU     RR       RR       TTT    ",
};

constexpr const char* kVersionDashes = "---------------------------";

// Dormant: the clocks of the execution report, by part and moment; the report prints these zeros.
constexpr std::int32_t kTimingTable[4][3] = {};

void WriteClock(Run& run, const char* label, int moment) {
    static const Format line("(11X,A,I2,':',I2,':',I2,'.',I2)");
    Write(run.units.listing, line, label, kTimingTable[0][moment], kTimingTable[1][moment],
          kTimingTable[2][moment], kTimingTable[3][moment]);
}

} // namespace

void WriteBanner(Run& run) {
    TextUnit& listing = run.units.listing;
    Write(listing, "('1',7(/))");
    Write(listing, "()");
    if (run.job.Language == kSerbian) {
        Write(listing, "(28X,A)", "P R O G R A M");
        Write(listing, "(10X,A)", "ZA NESTACIONARNU I NELINEARNU ANALIZU PROVODJENJA TOPLOTE");
        Write(listing, "(19X,A)", "METODOM KONACNIH ELEMENATA");
    } else {
        Write(listing, "(28X,A)", "FINITE ELEMENT PROGRAM");
        Write(listing, "(19X,A)", "FOR LINEAR AND NONLINEAR FIELD ANALYSIS");
    }
    Write(listing, "(12(/))");
    for (const char* line : kBlockLetters)
        Write(listing, "(12X,A)", line);
    Write(listing, "(5(/))");
    Write(listing, "(5X,A,A,A)", kVersionDashes, Say(run, "  VERZIJA  1.00  ", "  VERSION  1.00  "),
          kVersionDashes);
}

void WriteExecutionReport(Run& run) {
    TextUnit& listing = run.units.listing;
    Write(listing, "('1'///11X,A)",
          Say(run, "I Z V E S T A J    O    V R E M E N U    I Z V R S A V A N J A",
              "E X E C U T I O N    T I M I N G    I N F O RM A T I O N"));
    Write(listing, "(11X,57('-')/)");
    WriteClock(run,
               Say(run, "POCETAK UCITAVANJA ULAZNIH PODATAKA ............ ",
                   "TIME AT THE START OF READ OF INPUT DATA ........ "),
               0);
    WriteClock(run,
               Say(run, "POCETAK IZVRSAVANJA PO PERIODIMA ............... ",
                   "TIME AT THE START OF FORM OF MATRICES .......... "),
               1);
    WriteClock(run,
               Say(run, "ZAVRSETAK PRORACUNA ............................ ",
                   "END OF JOB  .................................... "),
               2);
}

void WriteCheckReport(Run& run) {
    TextUnit& unit = MessageUnit(run);
    Write(unit, "(///11X,A)",
          Say(run, "UCITAVANJE I GENERISANJE ULAZNIH PODATAKA JE ZAVRSENO",
              "READING AND GENERATING OF INPUT DATA IS OVER"));
    Write(unit, "(/11X,A)",
          Say(run, "ULAZNI PODACI SU BEZ FORMALNE GRESKE", "INPUT DATA ARE WITHOUT FORMAL ERROR"));
    Write(unit, "(/11X,A)",
          Say(run, "ZA IZVRSAVANJE PROGRAMA UNETI:   IREST = 1",
              "FOR EXECUTION OF PROGRAM ENTER:   IREST = 1"));
}

} // namespace zurt
