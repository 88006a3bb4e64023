// Follows the lines of one run by the collector's tables: which call a line belongs to, and what went wrong.

#pragma once

#include "document/explain.h"
#include "document/progress.h"
#include "document/tables.h"

#include <map>
#include <set>

namespace document
{

class RunReader
{
public:
    RunReader(size_t number, const TraceLine& first);

    void read(const TraceLine& line);
    /// Whether the run can have written the line, as far as it has come.
    [[nodiscard]] bool fits(const TraceLine& line) const;
    [[nodiscard]] bool ended() const { return run.end == RunEnd::closed || run.end == RunEnd::noSession; }
    [[nodiscard]] size_t number() const { return run.number; }
    [[nodiscard]] size_t lastLine() const { return run.lastLine; }
    /// Another run wrote at the same time. \return this one's number
    size_t mixWith(size_t other);
    /// What there is to say when no more lines come.
    TracedRun finish(RunEnd end);

private:
    /// A table's line that a text was made by.
    struct Match {
        const TableQuery* query = nullptr; ///< null: no query's line
        const TableLine* line = nullptr;
        std::vector<std::string_view> values;
    };
    /// A call to the resource manager, as far as lines tell of it.
    struct Call {
        const TableQuery* query = nullptr;
        std::optional<std::string> selection;
        bool workedOut = false;
    };
    /// Why a console program's answer is of no use.
    struct ProgramTrouble {
        std::string kind;
        std::optional<int64_t> status;
    };
    using Handler = void (RunReader::*)(const TraceLine& line, const Match& match);
    struct HandlerRow;

    void enter(const TraceLine& line, std::string_view function);
    void write(const TraceLine& line, std::string_view what);
    void event(const TraceLine& line, std::string_view what);
    [[nodiscard]] std::optional<Match> matchOf(const TraceLine& line) const;
    [[nodiscard]] int fitness(const Match& match) const;
    [[nodiscard]] int fitnessOfQuery(const Match& match) const;
    void act(const TraceLine& line, const Match& match);
    void beginCall(const TraceLine& line, const Match& match);
    void failed(const TraceLine& line, const Match& match);
    void succeeded(const TraceLine& line, const Match& match);

    void readStart(const TraceLine& line, const Match& match);
    void readNoTypeModel(const TraceLine& line, const Match& match);
    void readOption(const TraceLine& line, const Match& match);
    void readMinorErrors(const TraceLine& line, const Match& match);
    void readFacility(const TraceLine& line, const Match& match);
    void readPartner(const TraceLine& line, const Match& match);
    void readState(const TraceLine& line, const Match& match);
    void readNoState(const TraceLine& line, const Match& match);
    void readPartitionCount(const TraceLine& line, const Match& match);
    void readStatus(const TraceLine& line, const Match& match);
    void readNoDocument(const TraceLine& line, const Match& match);
    void readDocumentNotStarted(const TraceLine& line, const Match& match);
    void readOutOfMemory(const TraceLine& line, const Match& match);
    void readUser(const TraceLine& line, const Match& match);
    void readNoUser(const TraceLine& line, const Match& match);
    void readConsole(const TraceLine& line, const Match& match);
    void readNoConsole(const TraceLine& line, const Match& match);
    void readCommandFailed(const TraceLine& line, const Match& match);
    void readToolFailed(const TraceLine& line, const Match& match);
    void readSessionStart(const TraceLine& line, const Match& match);
    Problem& addSessionProblem(Problem of, const Match& match);
    void readSessionFailed(const TraceLine& line, const Match& match);
    void readSessionEnd(const TraceLine& line, const Match& match);
    void readSessionEndFailed(const TraceLine& line, const Match& match);
    void readInterface(const TraceLine& line, const Match& match);
    void readValues(const TraceLine& line, const Match& match);

    Problem& add(Problem problem);
    [[nodiscard]] Problem problemAt(const TraceLine& line, const char* kind, Severity severity) const;
    /// With what the table knows of the line.
    [[nodiscard]] Problem problemAt(const TraceLine& line, const Match& match, const char* kind,
                                    Severity severity) const;
    Problem& addOfCall(const TraceLine& line, const Match& match, const char* kind, Severity severity,
                       const Call& call);
    void checkOutput(const TraceLine& line, const Match& match, const std::string& command);
    Problem& addOfProgram(const TraceLine& line, const Match& match, const std::string& command);
    void attach(FiledEvent filed, bool awaited);
    void missingValue(const TraceLine& line, const std::string& className, const std::string& attribute,
                      const Call& call);
    void checkSelection(const TraceLine& line, const Call& call);
    [[nodiscard]] std::optional<std::string> workedOutSelection(const TableQuery& query) const;
    [[nodiscard]] std::string managedSystem() const;
    [[nodiscard]] const TableQuery* nodeQuery(std::string_view selection) const;
    void findSessionNotOpened(const TraceLine& line);

    TracedRun run;
    Progress progress;
    std::string entry; ///< the function whose "==>" line came last
    Call current;
    std::map<std::string, Call, std::less<>> lastCalls; ///< by function
    std::string partner;
    bool systemKnown = false;
    bool partnerKnown = false;
    int64_t partitions = 0;     ///< that are walked; 0: unknown
    int partitionQueries = 0;   ///< "==>" lines of queryPartition
    int64_t nodeSelections = 0; ///< since the last "==>" line of queryPartition or the domain session's start
    std::string firstSerial;    ///< of the node selections behind the collection
    ProgramTrouble trouble;
    std::string lastSession;
    std::optional<Problem> domainStart; ///< what is told of its line if the domain session did not open
    bool domainFailed = false;
    std::set<std::string> endedSessions;
    bool awaitsEvent = false; ///< the last problem is one of those that file an event
    bool filesMessage = false;
    std::vector<FiledEvent> loose; ///< filed before the line that tells why
    std::set<std::string> missingTold;
    int64_t adapters = 0; ///< host adapters of the last answer
    int64_t adaptersWithInterfaces = 0;
    int64_t interfacesLeft = 0; ///< of an adapter's list
    size_t consoles = 0;
    bool consolesFailed = false;
};

} // namespace document
