// The query pattern and the reading of responses, against answers that a console may give and a facility file
// cannot say: arrays that are missing, values of another kind, errors without record or message.

#include "scriptedClient.h"
#include "unit.h"

#include <gtest/gtest.h>

namespace
{

using Lines = std::vector<std::string>;

struct Item {
    char text[10];
    int32_t number;
    char interfaces[20];
};

constexpr Attribute attributes[] = {
    {.name = "text", .field = fieldOf<&Item::text>},
    {.name = "number", .field = fieldOf<&Item::number>},
    {.name = "interfaces", .field = fieldOf<&Item::interfaces>, .read = readInterfaceList},
    {.name = "unread"},
};

constexpr Query query = {
    .session = &kordRec::sess_hndl_DM,
    .className = "Class",
    .attributes = attributes,
    .selection = "id=%d",
    .callFailed = {.trace = {"0001", " call %d, %s."}, .report = noReport},
    .noResources = {.trace = {"0002", " none %d"}, .report = noReport},
    .responseTrace = {"0003", " response %d, %s."},
    .otherError = {.report = noReport},
    .emptyFirst = minorFailure({"0004", " empty %d"}),
};

constexpr Counter counter =
    counterOf({.entry = " countThem",
               .className = "Class",
               .codes = {"0001", "0002", "0003", "0004", "0005"},
               .selection = "image=\"%s\" && domain=\"%s\"",
               .callFailed = " call %d, %s"},
              {.selectionTrace = "%s", .emptyEnumeration = " none %d", .minorErrors = {}});

class QueryPattern : public testing::Test
{
protected:
    kordRec record = unit::freshRecord();
    unit::ScriptedClient client;

    /// Runs the query and reads every resource found.
    int32_t read(std::vector<Item>& items)
    {
        return runQuery(&record, query, requestOf(query.selection, 7), [&](Resources resources) {
            for (const ValeQueryResponse& resource : resources)
                readItem(&record, query, resource, &items.emplace_back());
            return collected;
        });
    }

    /// The item read from one resource with these attributes.
    Item readOne(const std::vector<ValeAttribute>& given)
    {
        Item item{};
        const ValeQueryResponse resource = {.error = {},
                                            .handle = nullptr,
                                            .attributes = given.data(),
                                            .attributeCount = static_cast<uint32_t>(given.size())};
        readItem(&record, query, resource, &item);
        return item;
    }
};

ValeAttribute integerAttribute(const char* name, int32_t integer)
{
    return {.name = name, .identifier = 0, .type = VALE_INTEGER, .value = {.integer = integer}};
}

ValeAttribute listAttribute(const char* name, const ValeIntegerList* list)
{
    return {.name = name, .identifier = 0, .type = VALE_INTEGER_LIST, .value = {.integers = list}};
}

TEST(Reports, nameOnlyWhatDepartsFromTheUsual)
{
    constexpr Query own = {.entry = " queryThem",
                           .session = &kordRec::sess_hndl_DM,
                           .className = "Class",
                           .callFailed = {},
                           .noResources = {},
                           .responseTrace = {}};
    const auto filed = [&](Role role, Report given) {
        const Report report = reportOf(own, role, given);
        const char* how = report.kind == Report::Kind::plain ? "plain" : "message";
        return std::string(how) + " " + report.name + " " + report.type;
    };
    EXPECT_EQ(filed(Role::callFailed, {}), "plain queryThem r");
    EXPECT_EQ(filed(Role::nothing, {}), "plain queryThem e");
    EXPECT_EQ(filed(Role::response, {}), "message Class r");
    EXPECT_EQ(filed(Role::response, underFunction), "plain queryThem r");
    EXPECT_EQ(filed(Role::response, {.type = "u"}), "message Class u");
    EXPECT_EQ(filed(Role::nothing, {.name = "another"}), "plain another e");
    EXPECT_EQ(reportOf(own, Role::nothing, noReport).kind, Report::Kind::none);
}

TEST_F(QueryPattern, readsResourcesInOrder)
{
    const std::vector<ValeAttribute> first = {unit::textAttribute("text", "a"),
                                              integerAttribute("number", -3)};
    const std::vector<ValeAttribute> second = {integerAttribute("number", 4),
                                               unit::textAttribute("text", "b")};
    std::vector<ValeQueryResponse> answer = {{{}, nullptr, first.data(), 2}, {{}, nullptr, second.data(), 2}};
    client.answers("Class", "id=7", answer);
    std::vector<Item> items;
    EXPECT_EQ(read(items), 0);
    ASSERT_EQ(items.size(), 2U);
    EXPECT_STREQ(items[0].text, "a");
    EXPECT_EQ(items[0].number, -3);
    EXPECT_STREQ(items[1].text, "b");
    EXPECT_EQ(items[1].number, 4);
}

/// One item takes all resources of an answer: what the one before left in it is seen by none.
TEST_F(QueryPattern, clearsTheItemBetweenResources)
{
    constexpr Attribute rows[] = {
        {.name = "text", .field = fieldOf<&Item::text>},
        {.name = "number", .field = fieldOf<&Item::number>, .kept = true},
        {.name = "interfaces",
         .field = fieldOf<&Item::interfaces>,
         .read = [](const kordRec*, const ValeAttribute&, Field) {}},
    };
    Query own = query;
    own.attributes = rows;
    const std::vector<ValeAttribute> whole = {unit::textAttribute("text", "a"), integerAttribute("number", 3),
                                              listAttribute("interfaces", nullptr)};
    const std::vector<ValeAttribute> sameNames = {unit::textAttribute(whole[0].name, nullptr),
                                                  integerAttribute(whole[1].name, 4),
                                                  listAttribute(whole[2].name, nullptr)};
    const std::vector<ValeAttribute> otherOrder = {whole[2], whole[1], unit::textAttribute("text", "c")};
    const std::vector<ValeAttribute> lessNumber = {unit::textAttribute("text", "d"), whole[2],
                                                   unit::textAttribute("x", "y")};
    std::vector<ValeQueryResponse> answer;
    for (const auto* given : {&whole, &sameNames, &otherOrder, &lessNumber, &whole})
        answer.push_back({{}, nullptr, given->data(), 3});
    client.answers("Class", "id=7", answer);
    std::vector<std::string> seen;
    EXPECT_EQ(forEachItem<Item>(&record, own, requestOf(own.selection, 7),
                                [&](Item& item) {
                                    seen.push_back(item.text + std::to_string(item.number) + item.interfaces);
                                    copyText(item.interfaces, "left over");
                                    return collected;
                                }),
              0);
    EXPECT_EQ(seen, (std::vector<std::string>{"a3", "4", "c3", "d3", "a3"}));
}

TEST_F(QueryPattern, takesMissingArrayForAnEmptyOne)
{
    std::vector<ValeQueryResponse> answer = {{{}, nullptr, nullptr, 5}};
    client.answers("Class", "id=7", answer);
    std::vector<Item> items;
    EXPECT_EQ(read(items), minorError);
    EXPECT_EQ(record.Flag, 1);
    EXPECT_EQ(unit::traceOf(record), (Lines{"0004:  empty 0"}));
}

TEST_F(QueryPattern, readsNothingFromALaterMissingArray)
{
    const std::vector<ValeAttribute> first = {unit::textAttribute("text", "a")};
    std::vector<ValeQueryResponse> answer = {{{}, nullptr, first.data(), 1}, {{}, nullptr, nullptr, 5}};
    client.answers("Class", "id=7", answer);
    std::vector<Item> items;
    EXPECT_EQ(read(items), 0);
    ASSERT_EQ(items.size(), 2U);
    EXPECT_STREQ(items[1].text, "");
}

TEST_F(QueryPattern, releasesAnEmptyAnswer)
{
    client.answersNothing("Class", "id=7");
    std::vector<Item> items;
    EXPECT_EQ(read(items), -1);
    EXPECT_EQ(unit::traceOf(record), (Lines{"0002:  none 0"}));
}

TEST_F(QueryPattern, releasesAnAnswerInError)
{
    std::vector<ValeQueryResponse> answer = {
        {{.number = 0x40008, .ffdcId = nullptr, .message = nullptr, .arguments = nullptr, .argumentCount = 0},
         nullptr,
         nullptr,
         0}};
    client.answers("Class", "id=7", answer);
    std::vector<Item> items;
    EXPECT_EQ(read(items), -1);
    EXPECT_EQ(unit::traceOf(record), (Lines{"0003:  response 262152, ."}));
}

TEST_F(QueryPattern, releasesMessageAndRecord)
{
    client.fails("Class", "id=7", 9, {.message = "down"});
    std::vector<Item> items;
    EXPECT_EQ(read(items), -1);
    EXPECT_EQ(unit::traceOf(record), (Lines{"0001:  call 9, down."}));
}

TEST_F(QueryPattern, takesNoMessageForAnEmptyOne)
{
    client.fails("Class", "id=7", 9, {});
    std::vector<Item> items;
    EXPECT_EQ(read(items), -1);
    EXPECT_EQ(unit::traceOf(record), (Lines{"0001:  call 9, ."}));
}

TEST_F(QueryPattern, takesNoRecordForAnEmptyMessage)
{
    client.fails("Class", "id=7", -1, {.hasRecord = false});
    std::vector<Item> items;
    EXPECT_EQ(read(items), -1);
    EXPECT_EQ(unit::traceOf(record), (Lines{"0001:  call -1, ."}));
}

TEST_F(QueryPattern, clearsWhatAResourceLacks)
{
    EXPECT_EQ(readOne({unit::textAttribute("text", "a"), integerAttribute("number", 1)}).number, 1);
    const Item item = readOne({integerAttribute("unread", 1), integerAttribute("unknown", 1)});
    EXPECT_STREQ(item.text, "");
    EXPECT_EQ(item.number, 0);
}

TEST_F(QueryPattern, passesOverAnAttributeWithoutName)
{
    EXPECT_EQ(readOne({integerAttribute(nullptr, 5)}).number, 0);
}

TEST_F(QueryPattern, knowsTheTypeByTheName)
{
    for (ValeDataType type = -1; type <= VALE_TEXT_LIST + 1; ++type) {
        ValeAttribute number = integerAttribute("number", 6);
        number.type = type;
        EXPECT_EQ(readOne({number}).number, 6) << type;
        ValeAttribute text = unit::textAttribute("text", "a");
        text.type = type;
        EXPECT_STREQ(readOne({text}).text, "a") << type;
    }
}

TEST_F(QueryPattern, takesANullTextForAnEmptyOne)
{
    EXPECT_STREQ(readOne({unit::textAttribute("text", nullptr)}).text, "");
}

TEST_F(QueryPattern, readsListsThatAreNotThere)
{
    const ValeIntegerList hollow = {.count = 3, .values = nullptr};
    EXPECT_STREQ(readOne({listAttribute("interfaces", nullptr)}).interfaces, "");
    EXPECT_STREQ(readOne({listAttribute("interfaces", &hollow)}).interfaces, "");

    const ValeTextList noTexts = {.count = 3, .values = nullptr};
    ValeAttribute texts = {
        .name = "texts", .identifier = 0, .type = VALE_TEXT_LIST, .value = {.texts = nullptr}};
    EXPECT_TRUE(textsOf(texts).empty());
    texts.value.texts = &noTexts;
    EXPECT_TRUE(textsOf(texts).empty());
}

TEST_F(QueryPattern, countsHandlesOfAllResponses)
{
    const std::vector<ValeResourceHandle> handles(5, nullptr);
    std::vector<ValeEnumerateResponse> answer = {
        {{}, "Class", handles.data(), 2}, {{}, "Class", handles.data(), 5}, {{}, "Class", nullptr, 9}};
    client.answers("Class", "image=\"i\" && domain=\"d\"", answer);
    int32_t count = -7;
    EXPECT_EQ(countResources(&record, counter, &count, "i", "d"), 0);
    EXPECT_EQ(count, 7);
}

TEST_F(QueryPattern, countsNothingWithoutHandles)
{
    std::vector<ValeEnumerateResponse> answer = {{{}, "Class", nullptr, 9}};
    client.answers("Class", "image=\"i\" && domain=\"d\"", answer);
    int32_t count = -7;
    EXPECT_EQ(countResources(&record, counter, &count, "i", "d"), minorError);
    EXPECT_EQ(count, 0);
}

TEST_F(QueryPattern, countsZeroPortsWhereThereAreNone)
{
    const std::string selection = R"((storageFacilityImageMTMS="i") && (ActivePeerDomain="d"))";
    client.answersNothing("Orvik.TarnHAPort", selection);
    int32_t count = 7;
    EXPECT_EQ(enumerateHAPort0(&record, &count, "i", "d"), -1);
    EXPECT_EQ(count, 0);
}

TEST_F(QueryPattern, keepsTheCountOnFailure)
{
    client.fails("Class", "image=\"i\" && domain=\"d\"", 3, {.message = "down\n"});
    int32_t count = -7;
    EXPECT_EQ(countResources(&record, counter, &count, "i", "d"), -1);
    EXPECT_EQ(count, -7);
}

class ImageLevel : public QueryPattern
{
protected:
    /// What a server partition whose action gives these elements adds to the document.
    std::string levels(const ValeElement* elements, uint32_t count, int32_t expected)
    {
        const std::vector<ValeResourceHandle> handles(1, nullptr);
        std::vector<ValeEnumerateResponse> partitions = {
            {{}, "Orvik.TarnServerPartition", handles.data(), 1}};
        std::vector<ValeActionResponse> answer = {{{}, {count, elements}}};
        client.answers("Orvik.TarnServerPartition", "locationCode=\"U1\" && ActivePeerDomain=\"d\"",
                       partitions);
        client.answers("queryRunningImageLevel", "(none)", answer);
        return unit::written(record,
                             [&](kordRec* run) { EXPECT_EQ(enumerateVRMF(run, "", "U1", "d"), expected); });
    }

    std::string level(const std::string& text)
    {
        return unit::written(record, [&](kordRec* run) { writeVRMF(run, text.c_str()); });
    }
};

TEST_F(ImageLevel, isAnyTextBehindAGoodReturnCode)
{
    const ValeElement elements[] = {{VALE_UNSIGNED, {.uinteger = 0}}, {VALE_TEXT, {.text = "5.1.0.309"}}};
    EXPECT_EQ(levels(elements, 2, 0), level("5.1.0.309"));
}

TEST_F(ImageLevel, isEmptyForAnElementOfAnotherKind)
{
    const ValeElement elements[] = {{VALE_TEXT_LIST, {.texts = nullptr}}, {VALE_TEXT, {.text = nullptr}}};
    EXPECT_EQ(levels(elements, 2, 0), level("") + level(""));
}

TEST_F(ImageLevel, failsWithoutElements)
{
    EXPECT_EQ(levels(nullptr, 4, -1), "");
    EXPECT_EQ(unit::traceOf(record).back(), "==>:  handleErrKord queryImageLevel, r");
}

/// The storage plex, which no run asks for.
class StoragePlex : public QueryPattern
{
};

TEST_F(StoragePlex, isWrittenForEveryAccountName)
{
    copyText(record.activePeerDomain_quay, "quay");
    const std::vector<ValeAttribute> first = {unit::textAttribute("storagePlexAccountName", "North"),
                                              unit::textAttribute("other", "x")};
    const std::vector<ValeAttribute> second = {unit::textAttribute("storagePlexAccountName", nullptr)};
    std::vector<ValeQueryResponse> answer = {{{}, nullptr, first.data(), 2}, {{}, nullptr, second.data(), 1}};
    client.answers("Orvik.TarnStoragePlex", "ActivePeerDomain=\"quay\" ", answer);
    const std::string document =
        unit::written(record, [](kordRec* run) { EXPECT_EQ(queryStoragePlex(run), 0); });
    EXPECT_EQ(document, unit::written(record, [](kordRec* run) {
                  writeStorPlex(run, "North");
                  writeStorPlex(run, "");
              }));
}

} // namespace
