// The manual's card tables against the layouts by which cards are read: the two can't drift apart.
#include "elements/cards/family_cards.h"
#include "elements/cards/group_cards.h"
#include "elements/radial/radial_cards.h"
#include "elements/surfaces/surface_cards.h"
#include "homogenization/homogenization_card.h"
#include "job/header_cards.h"
#include "microscale/correction_table.h"
#include "microscale/fibre_data.h"
#include "model/curve_table.h"
#include "model/diffusion_curves.h"
#include "model/function_tables.h"
#include "model/initial_conditions.h"
#include "model/materials.h"
#include "model/nodes.h"
#include "model/outlet.h"
#include "model/prescribed_file.h"
#include "model/prescribed_values.h"
#include "model/time_functions.h"
#include "model/time_steps.h"
#include "support/small_run.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <map>
#include <regex>
#include <set>
#include <sstream>

namespace zurt {
namespace {

struct Row {
    std::string name, descriptor, text; // "" for blank columns; the whole line
};
using Table = std::vector<Row>;

// The tables of cards under each heading of the third level, in their order.
using Manual = std::map<std::string, std::vector<Table>>;

// The text of cell `number` (from 1) of a table line, without outer blanks and back quotes.
std::string Cell(const std::string& line, int number) {
    std::size_t begin = 0;
    for (int i = 0; i < number; ++i)
        begin = line.find('|', begin) + 1;
    std::string cell = line.substr(begin, line.find('|', begin) - begin);
    const std::string outer = " `";
    cell.erase(0, std::min(cell.find_first_not_of(outer), cell.size()));
    cell.erase(cell.find_last_not_of(outer) + 1);
    return cell;
}

Manual ReadManual() {
    Manual manual;
    std::istringstream lines(zurt_test::ReadFile(ZURT_SOURCE_DIR "/docs/manual.md"));
    std::string line, heading;
    bool inTable = false;
    while (std::getline(lines, line)) {
        if (line.rfind("### ", 0) == 0)
            heading = line.substr(4);
        const bool isRow = line.rfind("| `", 0) == 0 || line.rfind("| (blank)", 0) == 0;
        if (isRow && !inTable)
            manual[heading].emplace_back();
        inTable = isRow;
        if (!isRow)
            continue;
        const std::string name = Cell(line, 1);
        manual[heading].back().push_back({name == "(blank)" ? "" : name, Cell(line, 2), line});
    }
    return manual;
}

std::string DescriptorText(const CardField& field) {
    const FieldDescriptor& descriptor = field.descriptor;
    if (descriptor.kind == 'X')
        return std::to_string(descriptor.width) + "X";
    std::string text = field.count > 1 ? std::to_string(field.count) : "";
    text += descriptor.kind + std::to_string(descriptor.width);
    if (descriptor.kind != 'I')
        text += "." + std::to_string(descriptor.decimals);
    return text;
}

void ExpectTable(const Table& table, const CardLayout& layout) {
    ASSERT_EQ(table.size(), static_cast<std::size_t>(layout.fieldCount));
    for (int f = 0; f < layout.fieldCount; ++f) {
        const CardField& field = layout.fields[f];
        const Row& row = table[static_cast<std::size_t>(f)];
        EXPECT_EQ(row.name, field.name);
        EXPECT_EQ(row.descriptor, DescriptorText(field)) << field.name;
        EXPECT_TRUE(zurt_test::Contains(row.text, field.effect))
            << field.name << " decides nothing, and the manual must say: " << field.effect;
    }
}

// clang-format off
const CardLayout* const kLayouts[] = {
    &kFormatCard, &kFirstDeviceCard, &kSecondDeviceCard, &kDegradationCard, &kBasicDataCard, &kControlCard,
    &kExecutionCard, &kGroupCard, &kMaterialHeaderCard, &kDeviceMaterialHeaderCard, &kBoundaryCard, &kNodeCard,
    &kStepCountCards, &kStepSizeCards, &kTimeFunctionCountCard, &kFunctionHeaderCard, &kFunctionPointCard,
    &kRadiationCard, &kShapeFactorCards, &kMaterialCard, &kConductionHeaderCard, &kConductionPointCard,
    &kSpecificHeatHeaderCard, &kSpecificHeatPointCard, &kDiffusionHeaderCard, &kDiffusionPointCard,
    &kInitialValueCard, &kInitialGroupCard, &kInitialNodeListCard, &kInitialRangeCard, &kHomogenizationCard,
    &kCurveEndsCard, &kSurfaceCard1D, &kSurfaceCard2D, &kSurfaceCard3D, &kPrescribedCountCard, &kPrescribedCard, &kOutletModeCard,
    &kOutletConcentrationCard, &kOutletCoefficientsCard, &kTimeMultiplierCard, &kTimePairCard, &kFibreSetCard,
    &kSearchBoxCard, &kSearchGridCard, &kFibreCard, &kFibrePointCard, &kCorrectionTableSizesCard,
    &kRadialGroupCard, &kRadialElementCard, &kRadialNodeCard,
};
// clang-format on

std::vector<const CardLayout*> AllLayouts() {
    std::vector<const CardLayout*> all(std::begin(kLayouts), std::end(kLayouts));
    for (const FamilyCards* family : CardsOfAllFamilies())
        for (const CardLayout* layout : {&family->groupCard, &family->deviceGroupCard, &family->elementCard,
                                         &family->fullElementCard, &family->midSideCard})
            if (layout->fieldCount > 0)
                all.push_back(layout);
    return all;
}

// Faults: a field added, moved, renamed or resized in the code alone, or a dormant field whose row keeps silent. Two forms
// of a card of elements stand under one heading: the group card without NDS and with it, the element card with the
// corners alone and with all columns.
TEST(Manual, CardTablesAreTheLayoutsOfTheCode) {
    Manual manual = ReadManual();
    std::map<std::string, std::vector<const CardLayout*>> layouts;
    for (const CardLayout* layout : AllLayouts())
        layouts[layout->group].push_back(layout);
    for (const auto& [heading, under] : layouts) {
        SCOPED_TRACE(heading);
        ASSERT_EQ(manual[heading].size(), under.size()) << "tables under the heading of the manual";
        for (std::size_t i = 0; i < under.size(); ++i)
            ExpectTable(manual[heading][i], *under[i]);
    }
}

// A layout that some header declares and no test compares.
TEST(Manual, EveryLayoutOfTheHeadersIsCompared) {
    std::set<std::string> declared;
    const std::regex declaration("extern const CardLayout (k\\w+);");
    for (const auto& entry : std::filesystem::recursive_directory_iterator(ZURT_SOURCE_DIR "/src")) {
        if (entry.path().extension() != ".h")
            continue;
        const std::string text = zurt_test::ReadFile(entry.path().string());
        for (std::sregex_iterator at(text.begin(), text.end(), declaration), end; at != end; ++at)
            declared.insert((*at)[1]);
    }
    EXPECT_EQ(declared.size(), std::set<const CardLayout*>(std::begin(kLayouts), std::end(kLayouts)).size())
        << testing::PrintToString(declared);
}

// --- the table of values ------------------------------------------------------------------------------------------

std::string Shown(double value) {
    std::ostringstream text;
    text << value;
    return text.str();
}

std::string RangeOf(double low, double high) {
    if (std::isinf(low) && std::isinf(high))
        return "any";
    return std::isinf(high)  ? Shown(low) + " and above"
           : std::isinf(low) ? Shown(high) + " and below"
                             : Shown(low) + " to " + Shown(high);
}

// A row of docs/values.md: what the field takes, and what becomes of the rest.
std::string ValueRow(const CardLayout& layout, const CardField& field) {
    const FieldValues& values = field.values;
    double low = values.low;
    std::string rest = "harmless: " + std::string(*field.effect != '\0' ? field.effect : field.meaning);
    if (field.least != kAnyInteger)
        low = field.least;
    if (!std::isinf(low) || !std::isinf(values.high))
        rest = *values.otherwise == '\0' ? "refused" : std::string("noted: ") + values.otherwise;
    return std::string("| ") + layout.group + " | `" + field.name + "` | " + RangeOf(low, values.high) +
           " | " + rest + " |\n";
}

// Faults: a field whose values nobody has looked at; a row of the documents that the code does not keep.
TEST(Values, TableIsThatOfTheCode) {
    std::string table;
    for (const CardLayout* layout : AllLayouts())
        for (int f = 0; f < layout->fieldCount; ++f)
            if (layout->fields[f].descriptor.kind != 'X')
                table += ValueRow(*layout, layout->fields[f]);
    const std::string document = zurt_test::ReadFile(ZURT_SOURCE_DIR "/docs/values.md");
    EXPECT_TRUE(zurt_test::Contains(document, "| --- | --- | --- | --- |\n" + table + "\n")) << table;
}

// The card, by columns, with `value` in field `at` (its first place when the row stands for several) and blanks elsewhere.
std::string CardWith(const CardLayout& layout, int at, double value) {
    std::string card;
    for (int f = 0; f < layout.fieldCount; ++f) {
        const FieldDescriptor& descriptor = layout.fields[f].descriptor;
        for (int k = 0; k < layout.fields[f].count; ++k) {
            const double low = layout.fields[f].values.low;
            std::string text = low > 0.0 ? Shown(low) : ""; // a code that a blank is none of
            if (f == at && k == 0)
                text = Shown(value) + (descriptor.kind == 'I' ? "" : ".");
            card += std::string(static_cast<std::size_t>(descriptor.width) - text.size(), ' ') + text;
        }
    }
    return card + "\n";
}

// Faults: a value without a meaning that is taken without a word, or one that is refused where the program knows what to do.
TEST(Values, RefusedAndNotedAsTheTableSays) {
    int checked = 0;
    for (const CardLayout* layout : AllLayouts())
        for (int f = 0; f < layout->fieldCount; ++f) {
            const CardField& field = layout->fields[f];
            const FieldValues& values = field.values;
            const double low = field.least != kAnyInteger ? field.least : values.low;
            if (std::isinf(low) && std::isinf(values.high))
                continue;
            ++checked;
            std::vector<char> record(1 << 12);
            zurt_test::SmallRun small(
                CardWith(*layout, f, std::isinf(low) ? values.high + 1 : std::floor(low) - 1));
            const auto read = [&] { ReadCardFields(small.deck, 2, *layout, record.data()); };
            if (*values.otherwise == '\0') {
                EXPECT_LIBRARY_ERROR(read(), std::string(layout->group) + ", field " + field.name);
                continue;
            }
            read();
            ASSERT_EQ(small.deck.notes.size(), 1U) << layout->group << field.name;
            EXPECT_TRUE(zurt_test::Contains(small.deck.notes[0].text, values.otherwise));
        }
    EXPECT_GT(checked, 90);
}

} // namespace
} // namespace zurt
