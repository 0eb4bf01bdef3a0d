#include "core/whole_file.h"

#include "core/stop.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace zurt {

namespace {

[[noreturn]] void StopOnFailure(const std::string& name, int reason) {
    StopWithLibraryError("can't write to " + name + ": " + std::strerror(reason));
}

bool WritePieces(std::FILE* file, const std::vector<std::string_view>& pieces) {
    for (const std::string_view piece : pieces)
        if (fwrite_unlocked(piece.data(), 1, piece.size(), file) != piece.size())
            return false;
    return true;
}

} // namespace

std::string PartName(const std::string& name) {
    const std::size_t slash = name.rfind('/');
    const std::size_t start = slash == std::string::npos ? 0 : slash + 1;
    return name.substr(0, start) + "." + name.substr(start) + ".part";
}

void StoreWholeFile(const std::string& name, const std::vector<std::string_view>& pieces) {
    const std::string part = PartName(name);
    const int descriptor = open(part.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (descriptor < 0)
        StopOnFailure(name, errno);
    std::FILE* file = fdopen(descriptor, "w");
    bool stored = file != nullptr && WritePieces(file, pieces);
    int reason = errno;
    if (file == nullptr) {
        close(descriptor);
    } else if (std::fclose(file) != 0 && stored) {
        stored = false;
        reason = errno;
    }
    if (stored && std::rename(part.c_str(), name.c_str()) == 0)
        return;
    if (stored)
        reason = errno;
    unlink(part.c_str());
    StopOnFailure(name, reason);
}

} // namespace zurt
