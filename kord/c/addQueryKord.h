// The query pattern, the one place where the client is called to read a class: select, check, trace, report,
// walk, release. A collector is a `Query` table and a walk over what came back.

#pragma once

#include "addErrLogKord.h"
#include "addTextKord.h"
#include "addTrcKord.h"
#include "kordRec.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <span>
#include <type_traits>

// --- Results of collectors: callers stop on exactly -1 and go on at anything else.

constexpr int32_t collected = 0;
constexpr int32_t failed = -1;
constexpr int32_t minorError = -2;
constexpr int32_t reported = 1; ///< filed as an event, but not fatal

// --- Error numbers of the resource manager that some collectors answer in their own way.

constexpr uint32_t valeError30002 = 0x30002;
constexpr uint32_t valeError40008 = 0x40008;
constexpr uint32_t valeError4000a = 0x4000a;
constexpr uint32_t valeError4000d = 0x4000d;

// --- Attributes: what is requested, and where in the collector's item its value goes.

/// A field of an item: a text of its declared size, an integer, or a view of a text.
struct Field {
    std::span<char> text = {};
    int32_t* integer = nullptr;
    std::string_view* view = nullptr;
};

/// A field's place in an item that is handed on as `void*`.
struct Place {
    Field (*of)(void* item) = nullptr;
    void (*copy)(void* item, const ValeAttribute& attribute) = nullptr; ///< the value into the field
};

template <typename Item, typename Type>
Item itemWith(Type Item::*);

/// The place behind a pointer to a member. Static, as the items are their modules' own: two that bear the
/// same name are not to share one function.
template <auto Member>
static constexpr Place fieldOf = {
    .of = [](void* item) -> Field {
        auto& field = static_cast<decltype(itemWith(Member))*>(item)->*Member;
        if constexpr (std::is_array_v<std::remove_reference_t<decltype(field)>>)
            return {.text = field};
        else
            return {.integer = &field};
    },
    .copy =
        [](void* item, const ValeAttribute& attribute) {
            auto& field = static_cast<decltype(itemWith(Member))*>(item)->*Member;
            if constexpr (std::is_array_v<std::remove_reference_t<decltype(field)>>)
                copyText(field, attribute.value.text);
            else
                field = attribute.value.integer;
        },
};

/// The place of a view, for items that are written before their answer is released: of the text in the answer
/// it takes what a text of that size would.
template <auto Member, size_t Size>
static constexpr Place viewOf = {
    .of = [](void* item) -> Field {
        return {.view = &(static_cast<decltype(itemWith(Member))*>(item)->*Member)};
    },
    .copy =
        [](void* item, const ValeAttribute& attribute) {
            const char* text = textOrEmpty(attribute.value.text);
            static_cast<decltype(itemWith(Member))*>(item)->*Member = {text, strnlen(text, Size - 1)};
        },
};

/// One requested attribute. The walk copies its value into the item's field unless the row says otherwise.
struct Attribute {
    const char* name;
    Place field = {}; ///< none: requested but never read
    void (*read)(const kordRec* pKordRec, const ValeAttribute& attribute, Field field) = nullptr;
    const char* matched = nullptr; ///< the name looked for in a response, where it differs from `name`
    bool kept = false; ///< not cleared between items: a resource without it repeats the last value
};

// --- Failures: what is traced, how it is filed, what the caller gets.

/// The ways in which a query can fail. Each has its usual report, of which a table's row names only what
/// departs.
enum class Role {
    callFailed, ///< under the function's name, `valeCallFailed`
    nothing,    ///< no resources, or not what must be there: under the function's name, `resourcesNotFound`
    response,   ///< a response in error: its message under the class's name, `valeCallFailed`
};

/// An event that a failure files.
struct Report {
    enum class Kind {
        usual,      ///< the role's
        none,       ///< nothing is filed
        plain,      ///< `handleErrKord`
        withMessage ///< `handleErrKord_new`, with the resource manager's message
    };
    Kind kind = Kind::usual;
    const char* name = nullptr; ///< null: the function's when plain, the class's with a message
    const char* type = nullptr; ///< null: the role's
};

constexpr Report noReport = {.kind = Report::Kind::none};
constexpr Report underFunction = {.kind = Report::Kind::plain}; ///< a response in error without its message

/// Stands for the name of the request's subject in a report.
inline constexpr char theSubject[] = "the request's subject";

/// Writes what stands in the document in place of resources.
using WriteInstead = void (*)(const kordRec*);

struct Failure {
    TraceText trace = {};
    Report report = {};
    int32_t result = failed;
    bool flag = false; ///< sets the run record's `Flag`
    WriteInstead instead = nullptr;
    bool writesFirst = false;    ///< writes before it reports
    const char* print = nullptr; ///< also printed on standard output: format of class, number, message
};

/// A failure that the facility is allowed to have: it shows only in `Flag`.
constexpr Failure minorFailure(TraceText trace = {}, WriteInstead instead = nullptr)
{
    return {.trace = trace, .report = noReport, .result = minorError, .flag = true, .instead = instead};
}

/// How a first response with this error number is answered. Its trace is the query's `responseTrace`.
struct ErrorCase {
    uint32_t number;
    Failure failure;
};

// --- The query itself.

/// The client's calls that read a class.
enum class Call { persistentQuery, dynamicQuery, enumeration, action };

/// One class, how it is asked for, and how every way to fail is answered. The formats of the traces get the
/// number (return code, count or error number), the message where there is one, and the request's subject.
struct Query {
    const char* entry = nullptr;    ///< the line under "==>": a blank and the function's name
    const char* function = nullptr; ///< the name of reports, where it is not the entry line's
    ValeSessionHandle kordRec::*session;
    const char* className;
    Call call = Call::persistentQuery;
    std::span<const Attribute> attributes = {};
    const char* selection = nullptr; ///< format of the selection; null: every resource of the class
    const char* action = nullptr;    ///< of a class action
    TraceText selectionTrace = {};
    Failure callFailed;
    Failure noResources;
    TraceText responseTrace;
    std::span<const ErrorCase> errors = {}; ///< the numbers that are not answered like any other
    Failure otherError = {};
    Failure emptyFirst = {}; ///< tested where it has a trace: a first response without attributes or handles
    TraceText success = {};  ///< gets the count and the first response's attribute count
    const char* progress = nullptr; ///< a line under ">>", after the success line
    bool walksRequested = false;    ///< items are walked by the number requested, not by what they hold
};

constexpr const char* functionOf(const Query& query)
{
    if (query.function != nullptr) return query.function;
    return query.entry != nullptr ? query.entry + 1 : query.className;
}

/// The report that a failure files in this role, with everything that its row leaves open.
constexpr Report reportOf(const Query& query, Role role, Report report)
{
    const bool isResponse = role == Role::response;
    if (report.kind == Report::Kind::none) return report;
    if (report.kind == Report::Kind::usual)
        report.kind = isResponse ? Report::Kind::withMessage : Report::Kind::plain;
    if (report.name == nullptr)
        report.name = report.kind == Report::Kind::plain ? functionOf(query) : query.className;
    if (report.type == nullptr) report.type = role == Role::nothing ? resourcesNotFound : valeCallFailed;
    return report;
}

/// What one call asks for: the selection, which holds the longest text that the record's fields can make, and
/// the name that traces and reports carry where the table leaves it open.
struct Request {
    char selection[500];
    const char* subject = "";
};

/// Formats the request's selection.
[[gnu::format(printf, 1, 2), nodiscard]] Request requestOf(const char* selection, ...);

using Resources = std::span<const ValeQueryResponse>;
using Enumeration = std::span<const ValeEnumerateResponse>;
using ActionResults = std::span<const ValeActionResponse>;

/// Whether a call's answer can be walked and, where not, the collector's result.
struct Verdict {
    bool usable;
    int32_t result;
};

/// Traces and reports what is wrong with a call's answer, if anything. `first` is the first response's error
/// (null when there is none), `firstSize` what it holds.
Verdict judgeAnswer(kordRec* pKordRec, const Query& query, const Request& request, int32_t rc, uint32_t count,
                    const ValeErrorNumber* first, uint32_t firstSize);

/// A call's answer, from the call to its release.
template <typename Response>
struct Answer {
    int32_t rc = 0;
    Response* responses = nullptr;
    uint32_t count = 0;
};

Answer<ValeQueryResponse> callQuery(kordRec* pKordRec, const Query& query, const Request& request);
Answer<ValeEnumerateResponse> callEnumeration(kordRec* pKordRec, const Query& query, const Request& request);

inline uint32_t sizeOf(const ValeQueryResponse& response)
{
    return response.attributes != nullptr ? response.attributeCount : 0;
}
inline uint32_t sizeOf(const ValeEnumerateResponse& response)
{
    return response.handles != nullptr ? response.handleCount : 0;
}
inline uint32_t sizeOf(const ValeActionResponse& response)
{
    return response.result.elements != nullptr ? response.result.count : 0;
}

/// Judges the answer, hands a usable one to `walk` as a span, and releases it once in either case. The result
/// is the failure's or the walk's.
template <typename Response, typename Walk>
[[nodiscard]] int32_t walkAnswer(kordRec* pKordRec, const Query& query, const Request& request,
                                 const Answer<Response>& answer, Walk walk)
{
    const bool hasFirst = answer.rc == 0 && answer.count > 0;
    const Verdict verdict =
        judgeAnswer(pKordRec, query, request, answer.rc, answer.count,
                    hasFirst ? &answer.responses->error : nullptr, hasFirst ? sizeOf(*answer.responses) : 0);
    const int32_t result =
        verdict.usable ? walk(std::span<const Response>{answer.responses, answer.count}) : verdict.result;
    if (answer.rc == 0) vale_free_response(answer.responses);
    return result;
}

/// Queries the class and walks the resources found; -1, -2 or 1 on failure as the table says.
template <typename Walk>
[[nodiscard]] int32_t runQuery(kordRec* pKordRec, const Query& query, const Request& request, Walk walk)
{
    return walkAnswer(pKordRec, query, request, callQuery(pKordRec, query, request), walk);
}

/// The same for an enumeration; the walk gets its responses.
template <typename Walk>
[[nodiscard]] int32_t runEnumeration(kordRec* pKordRec, const Query& query, const Request& request, Walk walk)
{
    return walkAnswer(pKordRec, query, request, callEnumeration(pKordRec, query, request), walk);
}

/// Runs the table's class action on a resource with one text as its input. Of the table it reads the
/// failures.
template <typename Walk>
[[nodiscard]] int32_t runAction(kordRec* pKordRec, const Query& query, ValeResourceHandle resource,
                                const char* input, Walk walk)
{
    const ValeElement element = {.type = VALE_TEXT, .value = {.text = input}};
    const ValeStructuredData data = {.count = 1, .elements = &element};
    Answer<ValeActionResponse> answer;
    answer.rc = vale_invoke_action(pKordRec->*query.session, &answer.responses, &answer.count, resource,
                                   query.action, &data);
    return walkAnswer(pKordRec, query, {}, answer, walk);
}

/// Traces and reports a failure that a walk itself finds; gives the failure's result.
int32_t fail(kordRec* pKordRec, const Query& query, const Failure& failure, int32_t number,
             const Request& request = {});

// --- Counting.

/// A count of the resources that belong to an image: an enumeration and what is particular to counts.
struct Counter {
    Query query;
    TraceText total = {};       ///< gets the count and the number of responses
    bool zeroWhenEmpty = false; ///< an empty enumeration sets the count to 0 although it fails
};

/// What tells one counter from the others of its family.
struct CounterRow {
    const char* entry;               ///< a blank and the function's name
    const char* className = nullptr; ///< null: the family's
    const char* codes[5];  ///< selection, failed call, empty enumeration, response in error, nothing found
    const char* selection; ///< of the image's MTMS and its domain
    const char* callFailed;
    const char* responseError = " response %d, %s";
};

/// What the counters of one family share.
struct CounterFamily {
    const char* className = nullptr;
    const char* selectionTrace;   ///< the trace's format
    const char* emptyEnumeration; ///< the trace's format
    Report emptyReport = {};
    Report responseReport = {};
    std::span<const ErrorCase> minorErrors;
    const char* total = nullptr; ///< the total's format; null: not traced
};

constexpr Counter counterOf(const CounterRow& row, const CounterFamily& family)
{
    return {
        .query =
            {
                .entry = row.entry,
                .session = &kordRec::sess_hndl_DM,
                .className = row.className != nullptr ? row.className : family.className,
                .call = Call::enumeration,
                .selection = row.selection,
                .selectionTrace = {row.codes[0], family.selectionTrace},
                .callFailed = {.trace = {row.codes[1], row.callFailed}},
                .noResources = {.trace = {row.codes[2], family.emptyEnumeration},
                                .report = family.emptyReport},
                .responseTrace = {row.codes[3], row.responseError},
                .errors = family.minorErrors,
                .otherError = {.report = family.responseReport},
                .emptyFirst = minorFailure({row.codes[4], " no res found %d"}),
            },
        .total = {family.total != nullptr ? row.codes[4] : nullptr, family.total},
    };
}

/// Counts the handles that the counter's enumeration finds. A minor error counts 0; on failure (-1) the count
/// stays as it was.
int32_t countResources(kordRec* pKordRec, const Counter& counter, int32_t* count,
                       const char* storageFacilityImageMTMS, const char* activePeerDomain);

// --- Reading responses.

/// Reads the attribute into the item if the table has it; `position` is where it stands in the response.
void readAttribute(const kordRec* pKordRec, const Query& query, const ValeAttribute& attribute,
                   size_t position, void* item);

/// Reads the resources of one answer, one after another, each into a cleared item. Nearly all of them have
/// the same attributes, as requested: where a resource's names lie where those of the one before lay, they
/// are not compared again, and every field is overwritten rather than cleared.
struct ItemReader {
    const kordRec* pKordRec;
    const Query& query;
    std::span<const ValeAttribute> model = {}; ///< the last ones that were found to be as requested

    void read(const ValeQueryResponse& resource, void* item);
    [[nodiscard]] bool isAsRequested(std::span<const ValeAttribute> attributes) const;
};

/// Clears the item and reads a resource into it.
void readItem(const kordRec* pKordRec, const Query& query, const ValeQueryResponse& resource, void* item);

/// Whether the value may be read as a text where a collector takes attributes as they come: it was asked for,
/// or the client says that it is one.
bool holdsText(const Query& query, const ValeAttribute& attribute);

/// The attributes of a resource, as many as its query's walk looks at.
std::span<const ValeAttribute> attributesOf(const Query& query, const ValeQueryResponse& resource);

/// An attribute's value, by the type that its name implies: the type member is not looked at. A null text or
/// list is an empty one.
const char* textOf(const ValeAttribute& attribute);
int32_t integerOf(const ValeAttribute& attribute);
std::span<const int32_t> integersOf(const ValeAttribute& attribute);
std::span<const char* const> textsOf(const ValeAttribute& attribute);

/// Appends one interface of a list: the first in decimal, each further one as a comma and its decimal form
/// without the last digit. Consumers know the field in this form.
void appendInterface(std::span<char> list, int32_t interface);

/// An attribute reader: a list of interfaces into a text field.
void readInterfaceList(const kordRec* pKordRec, const ValeAttribute& attribute, Field field);

/// Has the processor fetch a resource's texts while the one before it is written: a large facility's are in
/// none of its caches. A number is no address: looking for its page would cost more than the fetch.
inline void fetchAhead(const ValeQueryResponse& resource)
{
    for (uint32_t i = 0; i < sizeOf(resource); ++i) {
        const ValeAttribute& attribute = resource.attributes[i];
        if (attribute.type == VALE_TEXT) __builtin_prefetch(attribute.value.text);
    }
}

/// Queries the class and hands every resource, read into one item, to `use`. -1 from it ends the walk.
template <typename Item, typename Use>
[[nodiscard]] int32_t forEachItem(kordRec* pKordRec, const Query& query, const Request& request, Use use)
{
    return runQuery(pKordRec, query, request, [&](Resources resources) {
        Item item{};
        ItemReader reader{.pKordRec = pKordRec, .query = query};
        for (const ValeQueryResponse& resource : resources) {
            if (&resource != &resources.back()) fetchAhead(*(&resource + 1));
            reader.read(resource, &item);
            if (use(item) == failed) return failed;
        }
        return collected;
    });
}

/// Reads every attribute of the one name that the query asks for, and hands on the item after each.
template <typename Item, typename Use>
[[nodiscard]] int32_t forEachValue(kordRec* pKordRec, const Query& query, const Request& request, Use use)
{
    return runQuery(pKordRec, query, request, [&](Resources resources) {
        Item item{};
        for (const ValeQueryResponse& resource : resources) {
            for (const ValeAttribute& attribute : attributesOf(query, resource)) {
                if (strcmp(textOrEmpty(attribute.name), query.attributes[0].name) != 0) continue;
                readAttribute(pKordRec, query, attribute, 0, &item);
                if (const int32_t rc = use(item); rc < 0) return rc;
            }
        }
        return collected;
    });
}

// --- The client's last error.

struct ClientError {
    ValeErrorHandle record = nullptr;
    const char* text = nullptr;
};

/// Fetches the last failed call's error and its message.
ClientError takeError();

/// Never null.
inline const char* messageOf(const ClientError& error)
{
    return textOrEmpty(error.text);
}

/// Releases the message, then the record.
void releaseError(const ClientError& error);

// --- Partitions.

/// How many partitions are walked: those reported, as far as the record has slots.
int32_t partitionCount(const kordRec* pKordRec);
