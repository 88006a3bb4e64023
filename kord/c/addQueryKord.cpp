#include "addQueryKord.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>

namespace
{

constexpr size_t mostAttributes = 16;

using QueryCall = decltype(&vale_query_p_select);

/// Traces, files and notes one failure.
int32_t settle(kordRec* pKordRec, const Query& query, Role role, const Failure& failure, int32_t number,
               const char* message, const char* subject)
{
    const Report report = reportOf(query, role, failure.report);
    const char* name = report.name != theSubject ? report.name : subject;
    if (failure.instead != nullptr && failure.writesFirst) failure.instead(pKordRec);
    if (report.kind == Report::Kind::plain) handleErrKord(pKordRec, name, report.type);
    if (report.kind == Report::Kind::withMessage) handleErrKord_new(pKordRec, name, report.type, message);
    if (failure.instead != nullptr && !failure.writesFirst) failure.instead(pKordRec);
    if (failure.print != nullptr) printf(failure.print, query.className, number, message);
    if (failure.flag) pKordRec->Flag |= 1;
    return failure.result;
}

int32_t callFailed(kordRec* pKordRec, const Query& query, const Request& request, int32_t rc)
{
    const Failure& failure = query.callFailed;
    const ClientError error = takeError();
    trace(pKordRec, failure.trace.code, failure.trace.format, rc, messageOf(error), request.subject);
    const int32_t result =
        settle(pKordRec, query, Role::callFailed, failure, rc, messageOf(error), request.subject);
    releaseError(error);
    return result;
}

int32_t responseFailed(kordRec* pKordRec, const Query& query, const Request& request,
                       const ValeErrorNumber& error)
{
    const int32_t number = static_cast<int32_t>(error.number);
    const char* message = textOrEmpty(error.message);
    trace(pKordRec, query.responseTrace.code, query.responseTrace.format, number, message, request.subject);

    const auto own = std::ranges::find(query.errors, error.number, &ErrorCase::number);
    const Failure& failure = own != query.errors.end() ? own->failure : query.otherError;
    return settle(pKordRec, query, Role::response, failure, number, message, request.subject);
}

bool isNamed(const Attribute& row, const char* name)
{
    return strcmp(row.matched != nullptr ? row.matched : row.name, name) == 0;
}

/// Takes the value of before from a row's field, unless the row keeps it.
void clearField(const Attribute& row, void* item)
{
    if (row.kept || row.field.of == nullptr) return;
    const Field field = row.field.of(item);
    if (field.integer != nullptr)
        *field.integer = 0;
    else if (field.view != nullptr)
        *field.view = ""; // not without an address: it is copied from
    else
        field.text[0] = '\0';
}

/// The table's row for an attribute's name; attributes mostly arrive as requested, so its position is tried
/// first.
const Attribute* rowOf(const Query& query, const char* name, size_t position)
{
    const std::span<const Attribute> rows = query.attributes;
    if (position < rows.size() && isNamed(rows[position], name)) return &rows[position];
    const auto row = std::ranges::find_if(rows, [name](const Attribute& one) { return isNamed(one, name); });
    return row != rows.end() ? &*row : nullptr;
}

/// The attribute's value into the item, by the row that is its own.
void readRow(const kordRec* pKordRec, const Attribute& row, const ValeAttribute& attribute, void* item)
{
    if (row.read != nullptr)
        row.read(pKordRec, attribute, row.field.of(item));
    else if (row.field.copy != nullptr)
        row.field.copy(item, attribute);
}

} // namespace

Request requestOf(const char* selection, ...)
{
    Request request;
    va_list arguments;
    va_start(arguments, selection);
    formatArguments(request.selection, selection, arguments);
    va_end(arguments);
    return request;
}

int32_t fail(kordRec* pKordRec, const Query& query, const Failure& failure, int32_t number,
             const Request& request)
{
    trace(pKordRec, failure.trace.code, failure.trace.format, number, request.subject);
    return settle(pKordRec, query, Role::nothing, failure, number, "", request.subject);
}

Verdict judgeAnswer(kordRec* pKordRec, const Query& query, const Request& request, int32_t rc, uint32_t count,
                    const ValeErrorNumber* first, uint32_t firstSize)
{
    if (rc != 0) return {false, callFailed(pKordRec, query, request, rc)};
    if (first == nullptr) return {false, fail(pKordRec, query, query.noResources, 0, request)};
    if (first->number != 0) return {false, responseFailed(pKordRec, query, request, *first)};
    if (query.emptyFirst.trace.code != nullptr && firstSize == 0) {
        return {false, fail(pKordRec, query, query.emptyFirst, 0, request)};
    }
    if (query.success.code != nullptr) {
        trace(pKordRec, query.success.code, query.success.format, count, firstSize);
    }
    if (query.progress != nullptr) trace(pKordRec, {">>", query.progress});
    return {true, collected};
}

Answer<ValeQueryResponse> callQuery(kordRec* pKordRec, const Query& query, const Request& request)
{
    std::array<const char*, mostAttributes> names;
    const size_t count = std::min(query.attributes.size(), names.size());
    std::ranges::transform(query.attributes.first(count), names.begin(), &Attribute::name);

    if (query.entry != nullptr) trace(pKordRec, {"==>", query.entry});
    if (query.selectionTrace.code != nullptr) {
        trace(pKordRec, query.selectionTrace.code, query.selectionTrace.format, request.selection);
    }
    Answer<ValeQueryResponse> answer;
    const QueryCall call = query.call == Call::dynamicQuery ? vale_query_d_select : vale_query_p_select;
    answer.rc = call(pKordRec->*query.session, &answer.responses, &answer.count, query.className,
                     query.selection != nullptr ? request.selection : nullptr, names.data(),
                     static_cast<uint32_t>(count));
    return answer;
}

Answer<ValeEnumerateResponse> callEnumeration(kordRec* pKordRec, const Query& query, const Request& request)
{
    trace(pKordRec, {"==>", query.entry});
    trace(pKordRec, query.selectionTrace.code, query.selectionTrace.format, request.selection);
    Answer<ValeEnumerateResponse> answer;
    answer.rc = vale_enumerate_resources(pKordRec->*query.session, &answer.responses, &answer.count,
                                         query.className, request.selection);
    return answer;
}

int32_t countResources(kordRec* pKordRec, const Counter& counter, int32_t* count,
                       const char* storageFacilityImageMTMS, const char* activePeerDomain)
{
    const Request request = requestOf(counter.query.selection, storageFacilityImageMTMS, activePeerDomain);
    const Answer<ValeEnumerateResponse> answer = callEnumeration(pKordRec, counter.query, request);
    if (counter.zeroWhenEmpty && answer.rc == 0 && answer.count == 0) *count = 0;

    uint32_t total = 0;
    const int32_t result = walkAnswer(pKordRec, counter.query, request, answer, [&](Enumeration found) {
        for (const ValeEnumerateResponse& response : found)
            total += sizeOf(response);
        if (counter.total.code != nullptr) {
            trace(pKordRec, counter.total.code, counter.total.format, total,
                  static_cast<uint32_t>(found.size()));
        }
        return collected;
    });
    if (result != failed) *count = static_cast<int32_t>(total);
    return result;
}

void readAttribute(const kordRec* pKordRec, const Query& query, const ValeAttribute& attribute,
                   size_t position, void* item)
{
    const Attribute* row = rowOf(query, textOrEmpty(attribute.name), position);
    if (row != nullptr) readRow(pKordRec, *row, attribute, item);
}

bool ItemReader::isAsRequested(std::span<const ValeAttribute> attributes) const
{
    if (attributes.size() != query.attributes.size()) return false;
    const auto haveOneName = [](const ValeAttribute& left, const ValeAttribute& right) {
        return left.name == right.name;
    };
    if (std::ranges::equal(attributes, model, haveOneName)) return true;
    return std::ranges::equal(query.attributes, attributes,
                              [](const Attribute& row, const ValeAttribute& attribute) {
                                  return isNamed(row, textOrEmpty(attribute.name));
                              });
}

void ItemReader::read(const ValeQueryResponse& resource, void* item)
{
    const std::span<const ValeAttribute> attributes = attributesOf(query, resource);
    if (!isAsRequested(attributes)) {
        for (const Attribute& row : query.attributes)
            clearField(row, item);
        for (size_t i = 0; i < attributes.size(); ++i)
            readAttribute(pKordRec, query, attributes[i], i, item);
        return;
    }
    model = attributes;
    const Attribute* row = query.attributes.data();
    for (const ValeAttribute& attribute : attributes) {
        if (row->read != nullptr) clearField(*row, item); // it may leave the field as it is
        readRow(pKordRec, *row++, attribute, item);
    }
}

void readItem(const kordRec* pKordRec, const Query& query, const ValeQueryResponse& resource, void* item)
{
    ItemReader{.pKordRec = pKordRec, .query = query}.read(resource, item);
}

bool holdsText(const Query& query, const ValeAttribute& attribute)
{
    return rowOf(query, textOrEmpty(attribute.name), 0) != nullptr || attribute.type == VALE_TEXT;
}

std::span<const ValeAttribute> attributesOf(const Query& query, const ValeQueryResponse& resource)
{
    if (resource.attributes == nullptr) return {};
    const std::span<const ValeAttribute> all{resource.attributes, resource.attributeCount};
    return query.walksRequested ? all.first(std::min(all.size(), query.attributes.size())) : all;
}

const char* textOf(const ValeAttribute& attribute)
{
    return textOrEmpty(attribute.value.text);
}

int32_t integerOf(const ValeAttribute& attribute)
{
    return attribute.value.integer;
}

std::span<const int32_t> integersOf(const ValeAttribute& attribute)
{
    const ValeIntegerList* list = attribute.value.integers;
    if (list == nullptr || list->values == nullptr) return {};
    return {list->values, list->count};
}

std::span<const char* const> textsOf(const ValeAttribute& attribute)
{
    const ValeTextList* list = attribute.value.texts;
    if (list == nullptr || list->values == nullptr) return {};
    return {list->values, list->count};
}

void appendInterface(std::span<char> list, int32_t interface)
{
    char decimal[12];
    const std::string_view digits = joinText(decimal, interface);
    if (list[0] == '\0')
        copyText(list, decimal);
    else
        joinText(restOf(list), ",", digits.substr(0, digits.size() - 1));
}

void readInterfaceList(const kordRec*, const ValeAttribute& attribute, Field field)
{
    field.text[0] = '\0';
    for (const int32_t interface : integersOf(attribute))
        appendInterface(field.text, interface);
}

ClientError takeError()
{
    ClientError error;
    vale_get_error(&error.record);
    if (error.record != nullptr) vale_get_errmsg(error.record, &error.text);
    return error;
}

void releaseError(const ClientError& error)
{
    if (error.text != nullptr) vale_rel_errmsg(error.text);
    if (error.record != nullptr) vale_rel_error(error.record);
}

int32_t partitionCount(const kordRec* pKordRec)
{
    return std::clamp(pKordRec->num_contacts, 0, partitionSlots);
}
