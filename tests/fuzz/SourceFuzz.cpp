// The text source of a set of databases: what is read can be written, and is then read as the same.
#include <algorithm>
#include <bit>

#include "FuzzTarget.h"
#include "common/Fault.h"
#include "source/SourceReader.h"
#include "source/SourceWriter.h"

namespace {

using namespace lng;

// Doubles agree in their bits, so that -0 and a number that is none count as well.
bool SameCell(const Cell& left, const Cell& right) {
    const auto* number = std::get_if<double>(&left);
    const auto* other = std::get_if<double>(&right);
    if (number && other) return std::bit_cast<std::uint64_t>(*number) == std::bit_cast<std::uint64_t>(*other);
    return left == right;
}

bool SameField(const Field& left, const Field& right) {
    return left.name == right.name && SameCell(left.value, right.value);
}

bool SameRow(const Row& left, const Row& right) {
    return std::ranges::equal(left.fields, right.fields, SameField);
}

bool SameTable(const Table& left, const Table& right) {
    return left.name == right.name && left.definition == right.definition &&
           std::ranges::equal(left.rows, right.rows, SameRow);
}

bool SameDefinition(const Definition& left, const Definition& right) {
    return left.kind == right.kind && left.name == right.name && left.statement == right.statement;
}

bool SameDatabase(const DatabaseSource& left, const DatabaseSource& right) {
    return left.fileName == right.fileName && std::ranges::equal(left.tables, right.tables, SameTable) &&
           std::ranges::equal(left.definitions, right.definitions, SameDefinition);
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Source read;
    try {
        read = ParseSource("input", horalink::fuzz::Bytes(data, size));
    } catch (const tools::Fault&) {
        return 0;
    }
    const Source again = ParseSource("output", WriteSource(read));
    horalink::fuzz::Require(std::ranges::equal(read.databases, again.databases, SameDatabase),
                            "what was written is read as the same");
    return 0;
}
