#include "results/vtk_file.h"

#include "core/stop.h"
#include "core/whole_file.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <zlib.h>

namespace zurt {

namespace {

// Readers take a block at a time; of this size one fits the cache together with what zlib needs.
constexpr std::uint64_t kBlock = 32768;
constexpr int kLevel = 1;
constexpr int kWindowBits = 15, kMemoryLevel = 9; // zlib's largest

// Where all values differ, no strings of bytes repeat, and searching for repeats takes most of the time. Of so many blocks
// the first is searched; when its size falls to no less than this part, the others are coded by frequency alone.
constexpr std::uint64_t kBlocksToATrial = 16;
constexpr double kHardlySmaller = 0.85;

constexpr const char* kByteOrder = __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__ ? "LittleEndian" : "BigEndian";

void AppendCount(std::string& bytes, std::uint64_t count) {
    bytes.append(reinterpret_cast<const char*>(&count), sizeof count);
}

// A thread's own: zlib's state for blocks of both kinds, and the blocks of the trial in hand.
struct Compressor {
    z_stream matching{}, plain{};
    std::string bytes;
    std::vector<std::uint64_t> lengths;
};

void BeginCompressor(Compressor& compressor) {
    if (deflateInit2(&compressor.matching, kLevel, Z_DEFLATED, kWindowBits, kMemoryLevel,
                     Z_DEFAULT_STRATEGY) != Z_OK)
        throw std::bad_alloc();
    if (deflateInit2(&compressor.plain, kLevel, Z_DEFLATED, kWindowBits, kMemoryLevel, Z_HUFFMAN_ONLY) !=
        Z_OK) {
        deflateEnd(&compressor.matching);
        throw std::bad_alloc();
    }
}

void EndCompressor(Compressor& compressor) {
    deflateEnd(&compressor.matching);
    deflateEnd(&compressor.plain);
}

// The room is enough for any block, so nothing can fail.
void CompressBlock(Compressor& compressor, z_stream& stream, const char* block, std::uint64_t bytes) {
    const std::size_t start = compressor.bytes.size();
    deflateReset(&stream);
    compressor.bytes.resize(start + deflateBound(&stream, kBlock));
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(block));
    stream.avail_in = static_cast<uInt>(bytes);
    stream.next_out = reinterpret_cast<Bytef*>(&compressor.bytes[start]);
    stream.avail_out = static_cast<uInt>(compressor.bytes.size() - start);
    deflate(&stream, Z_FINISH);
    compressor.bytes.resize(start + stream.total_out);
    compressor.lengths.push_back(stream.total_out);
}

// The blocks of one trial, of which the first decides on the others.
void CompressTrial(Compressor& compressor, const char* data, std::uint64_t bytes) {
    compressor.bytes.clear();
    compressor.lengths.clear();
    bool plain = false;
    for (std::uint64_t done = 0; done < bytes; done += kBlock) {
        const std::uint64_t size = std::min(kBlock, bytes - done);
        CompressBlock(compressor, plain ? compressor.plain : compressor.matching, data + done, size);
        if (done == 0)
            plain = static_cast<double>(compressor.bytes.size()) > kHardlySmaller * static_cast<double>(size);
    }
}

void AppendBlocks(Workers& workers, const char* data, std::uint64_t bytes, std::string& target) {
    const std::uint64_t blocks = (bytes + kBlock - 1) / kBlock, trial = kBlock * kBlocksToATrial;
    const std::size_t lengths = target.size() + 3 * sizeof(std::uint64_t);
    AppendCount(target, blocks);
    AppendCount(target, kBlock);
    AppendCount(target, bytes % kBlock);
    for (std::uint64_t k = 0; k < blocks; ++k)
        AppendCount(target, 0);
    std::vector<Compressor> compressors(static_cast<std::size_t>(workers.count));
    for (Compressor& compressor : compressors)
        BeginCompressor(compressor);
    std::size_t place = lengths;
    InTurn(
        workers, static_cast<Word>((bytes + trial - 1) / trial),
        [&](Word chunk, int worker) {
            const std::uint64_t start = static_cast<std::uint64_t>(chunk - 1) * trial;
            CompressTrial(compressors[static_cast<std::size_t>(worker)], data + start,
                          std::min(trial, bytes - start));
        },
        [&](Word, int worker) {
            const Compressor& own = compressors[static_cast<std::size_t>(worker)];
            const std::size_t size = own.lengths.size() * sizeof(std::uint64_t);
            std::memcpy(&target[place], own.lengths.data(), size);
            place += size;
            target += own.bytes;
        });
    for (Compressor& compressor : compressors)
        EndCompressor(compressor);
}

template <class T>
VtkArray MakeArray(Workers& workers, const char* name, const char* type, int components,
                   const std::vector<T>& values) {
    VtkArray array;
    array.attributes = std::string("type=\"") + type + "\" Name=\"" + name + "\"";
    if (components > 1)
        array.attributes += " NumberOfComponents=\"" + std::to_string(components) + "\"";
    AppendBlocks(workers, reinterpret_cast<const char*>(values.data()), values.size() * sizeof(T),
                 array.bytes);
    return array;
}

} // namespace

VtkArray MakeVtkArray(Workers& workers, const char* name, int components, const std::vector<double>& values) {
    return MakeArray(workers, name, "Float64", components, values);
}

VtkArray MakeVtkArray(Workers& workers, const char* name, int components,
                      const std::vector<std::int32_t>& values) {
    return MakeArray(workers, name, "Int32", components, values);
}

VtkArray MakeVtkArray(Workers& workers, const char* name, int components,
                      const std::vector<std::int64_t>& values) {
    return MakeArray(workers, name, "Int64", components, values);
}

VtkArray MakeVtkArray(Workers& workers, const char* name, int components,
                      const std::vector<std::uint8_t>& values) {
    return MakeArray(workers, name, "UInt8", components, values);
}

VtkFile BeginVtkFile(const char* type) {
    VtkFile file;
    file.text = "<?xml version=\"1.0\"?>\n";
    OpenVtkElement(file, "VTKFile",
                   std::string("type=\"") + type + "\" version=\"1.0\" byte_order=\"" + kByteOrder +
                       "\" header_type=\"UInt64\" compressor=\"vtkZLibDataCompressor\"");
    OpenVtkElement(file, type);
    return file;
}

void OpenVtkElement(VtkFile& file, const std::string& name, const std::string& attributes) {
    file.text += "<" + name + (attributes.empty() ? "" : " ") + attributes + ">\n";
    file.ending.insert(0, "</" + name + ">\n");
}

void CloseVtkElement(VtkFile& file) {
    const std::size_t end = file.ending.find('\n') + 1;
    file.text += file.ending.substr(0, end);
    file.ending.erase(0, end);
}

void AddVtkArray(VtkFile& file, const VtkArray& array, const char* more) {
    file.text += "<DataArray " + array.attributes + more + " format=\"appended\" offset=\"";
    file.places.push_back(file.text.size());
    file.text += "\"/>\n";
    file.data.push_back(array.bytes);
}

void AddVtkArrays(VtkFile& file, const std::string& element, const std::vector<VtkArray>& arrays) {
    OpenVtkElement(file, element);
    for (const VtkArray& array : arrays)
        AddVtkArray(file, array);
    CloseVtkElement(file);
}

namespace {

// The data stands in the reverse order of the text. meshio (5) looks for the array of each offset while it writes new ones into the
// text, which may be old ones of others; it takes the first that it finds, and so finds the right one.
void SetOffsets(VtkFile& file) {
    std::uint64_t offset = 0;
    for (const std::string_view bytes : file.data)
        offset += bytes.size();
    std::string text;
    std::size_t done = 0;
    for (std::size_t k = 0; k < file.places.size(); ++k) {
        offset -= file.data[k].size();
        text += file.text.substr(done, file.places[k] - done) + std::to_string(offset);
        done = file.places[k];
    }
    file.text = text + file.text.substr(done);
}

} // namespace

void StoreVtkFile(VtkFile& file, const std::string& name) {
    const std::string outermost = "</VTKFile>\n";
    while (file.ending != outermost)
        CloseVtkElement(file);
    file.text += "<AppendedData encoding=\"raw\">\n_";
    SetOffsets(file);
    std::vector<std::string_view> pieces = {file.text};
    pieces.insert(pieces.end(), file.data.rbegin(), file.data.rend());
    const std::string end = "\n</AppendedData>\n" + outermost;
    pieces.push_back(end);
    StoreWholeFile(name, pieces);
}

} // namespace zurt
