#include "host/core/simulation/ScenarioSchema.h"

#include <QFile>

#include <valijson/adapters/nlohmann_json_adapter.hpp>
#include <valijson/schema.hpp>
#include <valijson/schema_parser.hpp>
#include <valijson/validator.hpp>

namespace host {

namespace {

using nlohmann::json;
using valijson::adapters::NlohmannJsonAdapter;

const json &schemaDocument()
{
    static const json document = [] {
        QFile file(QStringLiteral(":/velmora/simulation/scenario.schema.json"));
        if (!file.open(QIODevice::ReadOnly))
            qFatal("the scenario schema is not compiled in");
        return json::parse(file.readAll().toStdString());
    }();
    return document;
}

const valijson::Schema &compiledSchema()
{
    static const valijson::Schema &schema = [&]() -> const valijson::Schema & {
        static valijson::Schema result;
        valijson::SchemaParser parser(valijson::SchemaParser::kDraft7);
        parser.populateSchema(NlohmannJsonAdapter(schemaDocument()), result);
        return result;
    }();
    return schema;
}

const json &resolved(const json &schema)
{
    if (!schema.contains("$ref"))
        return schema;
    return schemaDocument().at(json::json_pointer(schema.at("$ref").get<std::string>().substr(1)));
}

/// Whole numbers that every JSON reader keeps exactly. The validation library
/// takes them for signed ones, so that the largest unsigned one passes as -1.
bool isBeyondExactIntegers(const json &value)
{
    constexpr std::int64_t Largest = (std::int64_t{1} << 53) - 1;
    if (value.is_number_unsigned())
        return value.get<std::uint64_t>() > static_cast<std::uint64_t>(Largest);
    return value.is_number_integer() && value.get<std::int64_t>() < -Largest;
}

/// What the library would find too late or not at all: it gathers the errors of
/// every element of a list before it looks at the list's length.
std::optional<ScenarioProblem> checkSizes(const json &value, const json &reference,
                                          const std::string &pointer)
{
    const json &schema = resolved(reference);
    const std::string expected = schema.value("description", std::string());
    if (isBeyondExactIntegers(value))
        return ScenarioProblem{pointer, "a number beyond 9007199254740991. Expected: " + expected + ".",
                               false};
    if (value.is_array() && schema.contains("items")) {
        const auto most = schema.at("maxItems").get<std::size_t>();
        if (value.size() > most)
            return ScenarioProblem{pointer,
                                   "must have at most " + std::to_string(most) +
                                       " elements. Expected: " + expected + ".",
                                   false};
        for (std::size_t i = 0; i < value.size(); ++i) {
            if (auto problem = checkSizes(value[i], schema.at("items"), pointer + '/' + std::to_string(i)))
                return problem;
        }
    }
    if (value.is_object() && schema.contains("properties")) {
        const json &properties = schema.at("properties");
        for (const auto &[key, member] : value.items()) {
            if (!properties.contains(key))
                continue; // the library refuses it
            if (auto problem = checkSizes(member, properties.at(key), pointer + pointerStep(key)))
                return problem;
        }
    }
    return std::nullopt;
}

/// The library names a place as "<root>", "[member]", "[0]".
std::string pointerFromContext(const std::vector<std::string> &context)
{
    std::string pointer;
    for (std::size_t i = 1; i < context.size(); ++i)
        pointer += pointerStep(std::string_view(context[i]).substr(1, context[i].size() - 2));
    return pointer;
}

/// What the schema says of the value at that place.
std::string expectation(const std::vector<std::string> &context)
{
    const json *schema = &schemaDocument();
    for (std::size_t i = 1; i < context.size(); ++i) {
        const std::string member = context[i].substr(1, context[i].size() - 2);
        if (schema->contains("properties") && schema->at("properties").contains(member))
            schema = &schema->at("properties").at(member);
        else if (schema->contains("items"))
            schema = &schema->at("items");
        else
            return {};
        schema = &resolved(*schema);
    }
    return schema->value("description", std::string());
}

/// The member that no property of the schema allows: the library gives its
/// name only in the text, between the last two quotes.
std::optional<std::string> unknownMember(const std::string &description)
{
    const std::size_t marker = description.find("'additionalProperties' constraints: '");
    if (marker == std::string::npos)
        return std::nullopt;
    const std::size_t begin = description.find(": '", marker) + 3;
    return description.substr(begin, description.rfind('\'') - begin);
}

ScenarioProblem toProblem(const valijson::ValidationResults::Error &error)
{
    ScenarioProblem problem{pointerFromContext(error.context), error.description, false};
    if (const auto member = unknownMember(error.description)) {
        problem.pointer += pointerStep(*member);
        problem.message = "unknown key " + inQuotes(*member);
        problem.atKey = true;
        return problem;
    }
    if (const std::string expected = expectation(error.context); !expected.empty())
        problem.message += (problem.message.ends_with('.') ? " Expected: " : ". Expected: ") + expected + ".";
    return problem;
}

} // namespace

std::optional<ScenarioProblem> validateScenarioDocument(const json &document)
{
    if (auto problem = checkSizes(document, schemaDocument(), {}))
        return problem;
    valijson::Validator validator;
    valijson::ValidationResults results;
    if (validator.validate(compiledSchema(), NlohmannJsonAdapter(document), &results))
        return std::nullopt;
    // Errors come from the inside out: the first names the value itself, the
    // later ones what is around it.
    valijson::ValidationResults::Error error;
    results.popError(error);
    return toProblem(error);
}

} // namespace host
