#include "cli/CheckCommand.h"

#include "cli/CommandLine.h"
#include "cli/EditForecast.h"
#include "cli/FileArguments.h"
#include "cli/FileRun.h"
#include "cli/JsonText.h"
#include "cli/PlainText.h"
#include "cli/TakeLedger.h"

namespace {

constexpr uint64_t kSchemaVersion = 1; // Grows when a name changes its meaning, not when one joins.

void beginLine(const std::string& path, JsonText& json)
{
    json.beginObject().key("schema_version").number(kSchemaVersion).key("path").text(path);
}

void endLine(const std::string& path, JsonText& json, std::string& out)
{
    json.key("not_utf8").flag(!isUtf8(path)).endObject();
    out += '\n';
}

void jsonFailure(const std::string& path, const FileError& error, std::string& out)
{
    JsonText json(out);
    beginLine(path, json);
    json.key("error").beginObject().key("code").text(error.code).key("message").text(error.words).endObject();
    endLine(path, json, out);
}

void appendOptional(std::string_view name, const std::optional<std::string>& value, JsonText& json)
{
    json.key(name);
    if (value)
        json.text(*value);
    else
        json.none();
}

void jsonFindings(const std::string& path, const std::vector<Finding>& findings, std::string& out)
{
    JsonText json(out);
    beginLine(path, json);
    json.key("problems").beginArray();
    for (const Finding& finding : findings) {
        json.beginObject().key("code").text(finding.code).key("severity").text(nameOf(finding.severity));
        json.key("field").text(finding.field).key("message").text(oneLine(finding.message));
        appendOptional("ixml", finding.ixml, json);
        appendOptional("bext", finding.bext, json);
        appendOptional("other_path", finding.otherPath.empty() ? std::nullopt : std::optional(finding.otherPath), json);
        json.endObject();
    }
    json.endArray();
    endLine(path, json, out);
}

void textFindings(const std::string& path, const std::vector<Finding>& findings, std::string& out)
{
    for (const Finding& finding : findings) {
        out.append(oneLine(path)).append(": ").append(nameOf(finding.severity)).append(": ");
        out.append(oneLine(finding.message)).append(" [").append(finding.code).append("]\n");
    }
}

Exit checkFiles(const NamedFiles& files, bool asJson, Io& io)
{
    TakeLedger ledger;
    FileWork work{ .work = [&](const std::string& path, std::string& out) {
        const CheckedFile file = readCheckedFile(path);
        std::vector<Finding> findings = findingsOf(file);
        for (Finding& finding : ledger.add(file))
            findings.push_back(std::move(finding));
        (asJson ? jsonFindings : textFindings)(path, findings, out);
        Exit exit = Exit::Ok;
        for (const Finding& finding : findings)
            exit = worse(exit, finding.severity == Severity::Info ? Exit::Ok : Exit::Found);
        return exit;
    } };
    if (asJson)
        work.failed = jsonFailure;
    return forEachFile(files.paths, io, work);
}

std::string_view wordsOf(EditOutcome outcome)
{
    switch (outcome) {
    case EditOutcome::Nothing:
        return "there is nothing to change";
    case EditOutcome::Whole:
        return "would be written whole";
    case EditOutcome::DescriptionOnly:
        return "would be written in the Description only";
    case EditOutcome::Partly:
        return "would be written partly";
    case EditOutcome::Refused:
        return "would be refused";
    }
    return {};
}

void textForecast(const std::string& path, const EditForecast& forecast, std::string& out)
{
    out.append(oneLine(path)).append(": ").append(wordsOf(forecast.outcome));
    std::string_view separator = ": ";
    for (const EditObstacle& obstacle : forecast.obstacles) {
        out.append(separator).append(oneLine(obstacle.words)).append(" [").append(obstacle.code).append("]");
        separator = "; ";
    }
    out += '\n';
}

void jsonForecast(const std::string& path, const EditForecast& forecast, std::string& out)
{
    JsonText json(out);
    beginLine(path, json);
    json.key("edit").beginObject().key("outcome").text(nameOf(forecast.outcome));
    json.key("ixml_missing_bytes").number(forecast.ixmlMissing);
    json.key("description_missing_bytes").number(forecast.descriptionMissing);
    json.key("obstacles").beginArray();
    for (const EditObstacle& obstacle : forecast.obstacles)
        json.beginObject().key("code").text(obstacle.code).key("message").text(oneLine(obstacle.words)).endObject();
    json.endArray().endObject();
    endLine(path, json, out);
}

Exit forecastFiles(const NamedFiles& files, const EditRequest& request, bool asJson, Io& io)
{
    FileWork work{ .work = [&](const std::string& path, std::string& out) {
        const EditForecast forecast = forecastEdit(path, request);
        (asJson ? jsonForecast : textForecast)(path, forecast, out);
        const bool isWell = forecast.outcome == EditOutcome::Whole || forecast.outcome == EditOutcome::Nothing;
        return isWell ? Exit::Ok : Exit::Found;
    } };
    if (asJson)
        work.failed = jsonFailure;
    return forEachFile(files.paths, io, work);
}

} // namespace

Exit runCheck(const Arguments& arguments, Io& io)
{
    const ParsedEdit edit = parseEdit(arguments);
    if (!edit.complaint.empty())
        return refuseUsage(io, kCheckCommand.name, edit.complaint);
    if (!namesFiles(arguments))
        return refuseUsage(io, kCheckCommand.name, "a FILE is missing");
    const NamedFiles files = namedFiles(arguments, io);
    const bool asJson = arguments.has("json");
    const Exit exit
        = edit.request.isEmpty() ? checkFiles(files, asJson, io) : forecastFiles(files, edit.request, asJson, io);
    return worse(files.exit, exit);
}
