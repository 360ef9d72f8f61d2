#include "commands/Commands.h"
#include "formats/DescriptionFile.h"
#include "terminal/Console.h"

namespace vexa::runner {
namespace {

constexpr const char* kSchemaFooter = R"(The file NAME.commands.json beside an add-on describes its commands. With the
schema, an editor completes and checks this file.

Example:
  vexa-standin schema >commands.schema.json

Exit status:
  0  the schema was printed
  2  wrong usage, or the schema could not be written)";

ExitStatus_e printSchema() {
    print(descriptionSchema());
    return ExitStatus_e::AllWell;
}

}  // namespace

Command schemaCommand() {
    Command command{"schema", "Print the JSON Schema of the files that describe an add-on's commands", kSchemaFooter};
    command.run = printSchema;
    return command;
}

}  // namespace vexa::runner
