#include "solver/exchange_files.h"
#include "solver/skyline_reference.h"
#include "support/expect_stop.h"
#include "support/run_deck.h"
#include "support/views.h"

#include <algorithm>
#include <cstring>

namespace {

using zurt::Word;
using namespace zurt_test;
using Integers = std::vector<std::int32_t>;
using Reals = std::vector<double>;

template <class T> std::string Bytes(T value) {
    return std::string(reinterpret_cast<const char*>(&value), sizeof value);
}
std::string Bytes(const Reals& values) {
    return std::string(reinterpret_cast<const char*>(values.data()), 8 * values.size());
}
std::string EntryBytes(std::int32_t row, std::int32_t column, double value) {
    return Bytes(row) + Bytes(column) + Bytes(value);
}

// Faults: a field of another size, terms of nodes without an equation, words lost where the buffer fills, output
// without sparse mode.
TEST(ExchangeFiles, ElementAndVectorStreams) {
    const std::string folder = MakeTemporaryFolder();
    Integers LM = {7, 0, 3};
    Reals S = {1, 2, 3, 4, 5, 6, 7, 8, 9}; // column by column
    Reals vector = {0.5, -1.5, 2.5};
    const std::string element =
        EntryBytes(7, 7, 1) + EntryBytes(3, 7, 3) + EntryBytes(7, 3, 7) + EntryBytes(3, 3, 9);
    for (const Word capacity : {Word{1}, Word{2}, Word{3}, Word{5}, Word{1000}, zurt::kExchangeBufferWords}) {
        const std::string name = folder + "/Sparse.bin";
        zurt::ExchangeStream stream;
        zurt::OpenExchangeStream(stream, name, capacity);
        zurt::WriteElementStream(stream, 0, 3, View(LM), {S.data(), 3, 3});
        zurt::WriteElementStream(stream, 1, 3, View(LM), {S.data(), 3, 3});
        zurt::WriteElementStream(stream, 1, 3, View(LM), {S.data(), 3, 3});
        zurt::WriteVectorStream(stream, 0, View(vector), 3);
        zurt::WriteVectorStream(stream, 1, View(vector), 2);
        zurt::CloseExchangeStream(stream);
        ASSERT_EQ(ReadFile(name), element + element + Bytes(Reals{0.5, -1.5})) << "capacity " << capacity;
    }

    Integers IRN(5), JCN(5);
    Reals A(5);
    zurt::ReadSparseFile(4, View(IRN), View(JCN), View(A), folder + "/Sparse.bin");
    EXPECT_EQ(IRN, (Integers{7, 3, 7, 3, 0}));
    EXPECT_EQ(JCN, (Integers{7, 7, 3, 3, 0}));
    EXPECT_EQ(A, (Reals{1, 3, 7, 9, 0}));
}

// Faults: a read past the arrays, a file that is too short taken as it is.
TEST(ExchangeFilesStops, SparseFileMustHoldAndFit) {
    const std::string name = MakeTemporaryFolder() + "/Sparse.bin";
    WriteFile(name, EntryBytes(1, 1, 1.0) + EntryBytes(2, 2, 2.0).substr(0, 15));
    Integers IRN(3), JCN(3);
    Reals A(3);
    const auto read = [&](std::int32_t count, const std::string& from) {
        zurt::ReadSparseFile(count, View(IRN), View(JCN), View(A), from);
    };
    EXPECT_LIBRARY_ERROR(read(2, name), "Sparse.bin: it ends too early");
    EXPECT_LIBRARY_ERROR(read(4, name), "more entries are wanted");
    EXPECT_LIBRARY_ERROR(read(1, name + "x"), "can't open .*Sparse.binx");
}

// Faults: the header's fields exchanged, X and R exchanged, a residual of the wrong sign.
TEST(ExchangeFiles, FullMatrixAndTheResidualOfASolution) {
    const std::string folder = MakeTemporaryFolder();
    const std::string matrix = folder + "/FULLMATR.BIN", comparison = folder + "/comparison.txt";
    Integers IRN = {1, 1, 2}, JCN = {1, 2, 1};
    Reals A = {4, 3, 2};
    zurt::WriteFullMatrix(2, 3, View(IRN), View(JCN), View(A), matrix);
    EXPECT_EQ(ReadFile(matrix), Bytes(std::int32_t{2}) + Bytes(std::int32_t{3}) + EntryBytes(1, 1, 4) +
                                    EntryBytes(1, 2, 3) + EntryBytes(2, 1, 2));
    Reals X = {1, 2}, R = {10.5, 1};
    zurt::CompareSolution(View(X), 2, View(R), matrix, comparison);
    EXPECT_EQ(R, (Reals{-0.5, 1}));
    EXPECT_EQ(ReadFile(comparison), "         1  -5.0000000000000000E-01\n"
                                    "         2   1.0000000000000000E+00\n");
}

// Faults: indices of a damaged file used as they are.
TEST(ExchangeFilesStops, DamagedMatrixTouchesNothing) {
    const std::string name = MakeTemporaryFolder() + "/FULLMATR.BIN";
    const std::string size = Bytes(std::int32_t{2}) + Bytes(std::int32_t{1});
    Reals X = {1, 2}, R = {0, 0};
    const auto compare = [&](std::int32_t JEDN) { // a report of one that stops stays open
        zurt::CompareSolution(View(X), JEDN, View(R), name, MakeTemporaryFolder() + "/report");
    };
    for (const std::string& entry :
         {EntryBytes(3, 1, 1), EntryBytes(0, 1, 1), EntryBytes(1, 2147483647, 1), EntryBytes(1, -1, 1)}) {
        WriteFile(name, size + entry);
        EXPECT_LIBRARY_ERROR(compare(2), "an entry outside its equations");
    }
    EXPECT_LIBRARY_ERROR(compare(1), "another number of equations");
    WriteFile(name, size);
    EXPECT_LIBRARY_ERROR(compare(2), "ends too early");
}

// Faults: small entries written or left out against the count, a small diagonal left out, row and column exchanged.
TEST(ExchangeFiles, SkylineForTheExternalSolver) {
    const std::string folder = MakeTemporaryFolder();
    Integers MAXA = {1, 2, 4, 7, 8};
    //            K11  K22 K12    K33  K23    K13     K44
    Reals store = {5, 1e-30, 0.5, 7, 1e-20, -1.1e-20, 0.0};
    Reals R = {1, 2, 3, 4};
    zurt::WriteSkylineForExternal(View(store), View(R), View(MAXA), 4, folder);
    EXPECT_EQ(ReadFile(folder + "/ZURF_MUMPS.OUT"), Bytes(std::int32_t{4}) + Bytes(std::int32_t{6}) +
                                                        EntryBytes(1, 1, 5) + EntryBytes(2, 2, 1e-30) +
                                                        EntryBytes(1, 2, 0.5) + EntryBytes(3, 3, 7) +
                                                        EntryBytes(1, 3, -1.1e-20) + EntryBytes(4, 4, 0.0));
    EXPECT_EQ(ReadFile(folder + "/ZURF_RHS.OUT"), Bytes(R));
}

struct Road {
    std::string folder = MakeTemporaryFolder();
    zurt::ExternalRoute route;
};

/// A route whose command copies `solution` to the result file `name`.
Road MakeRoad(const std::string& parameters, const Reals& solution, const std::string& name) {
    Road road;
    road.route.parameters = road.folder + "/params.txt";
    road.route.result = road.folder + "/RESENJE.OUT";
    road.route.numberedFolder = road.folder;
    road.route.command = "cp " + road.folder + "/solution " + road.folder + "/" + name;
    WriteFile(road.route.parameters, parameters);
    WriteFile(road.folder + "/solution", Bytes(solution));
    return road;
}

// Faults: the result read before the command has ended, from another file, or by the number of another line.
TEST(ExchangeFiles, SolutionComesFromTheCommand) {
    Reals R = {9, 9, 9};
    const Road plain = MakeRoad("a\nb\nc\n", {1, 2}, "RESENJE.OUT");
    zurt::SolveExternal(View(R), 2, plain.route);
    EXPECT_EQ(R, (Reals{1, 2, 9}));

    for (const char* parameters : {"cube of bricks\r\n\r\n 8 / 9\r\n 12, the number",
                                   "'it''s'\n\"8\"\n'12'\n", "1\n12\n,\n", "1\n 012 \n/\n"}) {
        const Road numbered = MakeRoad(parameters, {3, 4, 5}, "RESENJE_12.OUT");
        R = {9, 9, 9};
        zurt::SolveExternalNumbered(View(R), 3, numbered.route);
        EXPECT_EQ(R, (Reals{3, 4, 5})) << parameters;
    }
}

// Faults: a default that is not the documented one; a missing or short file that goes unnoticed.
TEST(ExchangeFilesStops, RouteToTheExternalSolver) {
    const zurt::ExternalRoute usual;
    EXPECT_EQ(usual.command, "mpiexec -np 32 solver");
    EXPECT_EQ(usual.parameters + usual.result + usual.numberedFolder, "params.txtRESENJE.OUT/tmp");
    Reals R = {9, 9};
    const Road few = MakeRoad("a\n\n  \nb\n", {1, 2}, "RESENJE.OUT");
    EXPECT_LIBRARY_ERROR(zurt::SolveExternal(View(R), 2, few.route), "ends before its third text");
    const Road brief = MakeRoad("a\nb\nc\n", {1}, "RESENJE.OUT");
    EXPECT_LIBRARY_ERROR(zurt::SolveExternal(View(R), 2, brief.route), "ends too early");
    const Road unnumbered = MakeRoad("1\n2\nthree\n", {1, 2}, "RESENJE_2.OUT");
    EXPECT_LIBRARY_ERROR(zurt::SolveExternalNumbered(View(R), 2, unnumbered.route),
                         "not the number of a result file");
    Road failing = MakeRoad("a\nb\nc\n", {1, 2}, "RESENJE.OUT");
    failing.route.command = "exit 3";
    EXPECT_LIBRARY_ERROR(
        zurt::SolveExternal(View(R), 2, failing.route),
        "note: the command of the external solver failed: exit 3\n(.|\n)*can't open .*RESENJE.OUT");
}

} // namespace
