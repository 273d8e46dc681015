// The text source of a set of databases: what is read can be written, and comes out of a second reading as it
// was.
#include "FuzzTarget.h"
#include "common/Fault.h"
#include "source/SourceReader.h"
#include "source/SourceWriter.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace lng;
    Source read;
    try {
        read = ParseSource("input", horalink::fuzz::Bytes(data, size));
    } catch (const tools::Fault&) {
        return 0;
    }
    const std::string written = WriteSource(read);
    horalink::fuzz::Require(WriteSource(ParseSource("output", written)) == written,
                            "what was written is read as the same");
    return 0;
}
