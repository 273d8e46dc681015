// The text source of a set of databases: what is read can be written, and comes out of a second reading as it
// was.
#include "FuzzTarget.h"
#include "common/Fault.h"
#include "source/SourceReader.h"
#include "source/SourceWriter.h"

void horalink::fuzz::Try(std::string_view input) {
    lng::Source read;
    try {
        read = lng::ParseSource("input", input);
    } catch (const tools::Fault&) {
        return;
    }
    const std::string written = lng::WriteSource(read);
    Require(lng::WriteSource(lng::ParseSource("output", written)) == written,
            "what was written is read as the same");
}
