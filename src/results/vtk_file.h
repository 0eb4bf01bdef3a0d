// Files for viewers in the XML form of VTK: text that describes arrays, and the arrays behind it, compressed.
//
// File formats of the Visualization Toolkit, https://docs.vtk.org/en/latest/design_documents/VTKFileFormats.html: XML whose
// arrays name their offset in one block of appended raw data. There an array is a row of 64-bit counts (blocks, bytes of a
// block, bytes of the last one if it is shorter, compressed bytes of each) and then its blocks, each compressed by zlib.
// Called by the writers of the .vtu and .vtp files.
#pragma once

#include "core/workers.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zurt {

/// An array, ready for a file.
struct VtkArray {
    std::string attributes; // name, type, components
    std::string bytes;      // as they stand in the file
};

/// Compresses an array of doubles, 32-bit integers, 64-bit integers or bytes. `components` values make a row. Workers share the blocks.
VtkArray MakeVtkArray(Workers& workers, const char* name, int components, const std::vector<double>& values);
VtkArray MakeVtkArray(Workers& workers, const char* name, int components,
                      const std::vector<std::int32_t>& values);
VtkArray MakeVtkArray(Workers& workers, const char* name, int components,
                      const std::vector<std::int64_t>& values);
VtkArray MakeVtkArray(Workers& workers, const char* name, int components,
                      const std::vector<std::uint8_t>& values);

/// A file while it is put together. The arrays are kept by the caller until the file is stored.
struct VtkFile {
    std::string text;                   // the XML ahead of the appended data, without the arrays' offsets
    std::string ending;                 // elements that are still open, innermost first
    std::vector<std::string_view> data; // arrays in the order of the text
    std::vector<std::size_t> places;    // in the text, of their offsets
};

/// A file of this type ("UnstructuredGrid", "PolyData") whose element of that name is open.
VtkFile BeginVtkFile(const char* type);

/// Opens an element ("PointData"; with its attributes) within the one in hand.
void OpenVtkElement(VtkFile& file, const std::string& name, const std::string& attributes = "");

/// Closes the element in hand.
void CloseVtkElement(VtkFile& file);

/// An array in the element in hand; `more` are further attributes.
void AddVtkArray(VtkFile& file, const VtkArray& array, const char* more = "");

/// An element with the arrays in it.
void AddVtkArrays(VtkFile& file, const std::string& element, const std::vector<VtkArray>& arrays);

/// Closes what is open and stores the file, whole or not at all. A failure ends the run with a library error.
void StoreVtkFile(VtkFile& file, const std::string& name);

} // namespace zurt
