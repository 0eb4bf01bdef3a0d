// The external solver: solves a symmetric system from files with the parallel MUMPS, under mpiexec.
//
//   mpiexec -np 32 solver [SYSTEM [VECTOR [SOLUTION]]]
//
//   SYSTEM    /tmp/ZURF_MUMPS.OUT: number of equations and of entries as 32-bit integers, then the entries, 16 bytes
//             each: row, column (32-bit, one-based), value (double); of each pair (r, c), (c, r) one stands for both
//   VECTOR    /tmp/ZURF_RHS.OUT: the right-hand side, one double for each equation
//   SOLUTION  RESENJE.OUT: the solution, one double for each equation
//
// The first process reads, hands the system to the solver, and writes. Whatever fails is told on standard error, and
// the exit status is then 1; a solution file is written only by a solve that succeeded.
#include <dmumps_c.h>
#include <mpi.h>

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

namespace {

// Values of the field JOB.
constexpr MUMPS_INT kCreateInstance = -1;
constexpr MUMPS_INT kAnalyseFactoriseSolve = 6;
constexpr MUMPS_INT kEndInstance = -2;
constexpr MUMPS_INT kGeneralSymmetric = 2;
constexpr MUMPS_INT kHostWorks = 1;

struct Entry {
    std::int32_t row;
    std::int32_t column;
    double value;
};

struct SystemSize {
    std::int32_t equations;
    std::int32_t entries;
};

/// The system as the first process holds it.
struct System {
    std::int32_t equations = 0;
    std::vector<MUMPS_INT> rows, columns;
    std::vector<double> values;
    std::vector<double> vector; // right-hand side, then solution
};

bool Fail(const std::string& what) {
    std::fprintf(stderr, "solver: %s\n", what.c_str());
    return false;
}

bool ReadMatrix(std::FILE* file, const std::string& name, System& system) {
    SystemSize size;
    if (std::fread(&size, sizeof size, 1, file) != 1 || size.equations < 1 || size.entries < 1)
        return Fail(name + " does not begin with the size of a system");
    system.equations = size.equations;
    for (std::int32_t k = 0; k < size.entries; ++k) {
        Entry entry;
        if (std::fread(&entry, sizeof entry, 1, file) != 1)
            return Fail(name + " ends too early");
        system.rows.push_back(entry.row);
        system.columns.push_back(entry.column);
        system.values.push_back(entry.value);
    }
    return true;
}

bool ReadSystem(const std::string& matrixName, const std::string& vectorName, System& system) {
    std::FILE* file = std::fopen(matrixName.c_str(), "rb");
    if (file == nullptr)
        return Fail("can't open " + matrixName);
    const bool matrixRead = ReadMatrix(file, matrixName, system);
    std::fclose(file);
    if (!matrixRead)
        return false;
    file = std::fopen(vectorName.c_str(), "rb");
    if (file == nullptr)
        return Fail("can't open " + vectorName);
    const std::size_t count = static_cast<std::size_t>(system.equations);
    system.vector.resize(count);
    const bool vectorRead = std::fread(system.vector.data(), sizeof(double), count, file) == count;
    std::fclose(file);
    return vectorRead || Fail(vectorName + " ends too early");
}

bool WriteSolution(const std::string& name, const System& system) {
    std::FILE* file = std::fopen(name.c_str(), "wb");
    if (file == nullptr)
        return Fail("can't open " + name);
    const std::size_t count = system.vector.size();
    const bool written = std::fwrite(system.vector.data(), sizeof(double), count, file) == count;
    return (std::fclose(file) == 0 && written) || Fail("can't write to " + name);
}

/// All processes together; the system is looked at on the first alone. True on each when the solve succeeded.
bool Solve(System& system) {
    DMUMPS_STRUC_C instance{};
    instance.comm_fortran = static_cast<MUMPS_INT>(MPI_Comm_c2f(MPI_COMM_WORLD));
    instance.sym = kGeneralSymmetric;
    instance.par = kHostWorks;
    instance.job = kCreateInstance;
    dmumps_c(&instance);
    MUMPS_INT* ICNTL = instance.icntl - 1;
    ICNTL[1] = ICNTL[2] = ICNTL[3] = -1; // no output of its own
    ICNTL[4] = 0;
    ICNTL[14] = 120; // percent of added working space
    instance.n = system.equations;
    instance.nnz = static_cast<MUMPS_INT8>(system.values.size());
    instance.irn = system.rows.data();
    instance.jcn = system.columns.data();
    instance.a = system.values.data();
    instance.rhs = system.vector.data();
    instance.job = kAnalyseFactoriseSolve;
    dmumps_c(&instance);
    const MUMPS_INT status = instance.infog[0];
    const MUMPS_INT detail = instance.infog[1];
    instance.job = kEndInstance;
    dmumps_c(&instance);
    int rank = 0;
    MPI_Comm_rank(MPI_COMM_WORLD, &rank);
    if (status != 0 && rank == 0)
        Fail("the system was not solved: INFOG(1) " + std::to_string(status) + ", INFOG(2) " +
             std::to_string(detail));
    return status == 0;
}

/// What the first process says of its own work, told to all.
bool Agree(bool good) {
    int told = good ? 1 : 0;
    MPI_Bcast(&told, 1, MPI_INT, 0, MPI_COMM_WORLD);
    return told != 0;
}

} // namespace

int main(int argumentCount, char** arguments) {
    MPI_Init(&argumentCount, &arguments);
    const std::string matrixName = argumentCount > 1 ? arguments[1] : "/tmp/ZURF_MUMPS.OUT";
    const std::string vectorName = argumentCount > 2 ? arguments[2] : "/tmp/ZURF_RHS.OUT";
    const std::string solutionName = argumentCount > 3 ? arguments[3] : "RESENJE.OUT";
    int rank = 0;
    MPI_Comm_rank(MPI_COMM_WORLD, &rank);
    System system;
    bool good = Agree(rank != 0 || ReadSystem(matrixName, vectorName, system));
    good = good && Solve(system);
    good = good && Agree(rank != 0 || WriteSolution(solutionName, system));
    MPI_Finalize();
    return good ? 0 : 1;
}
