// Follows a run call by call. Each call is a step of the run; its reaction decides how the run goes on.

#include "account.h"

#include <algorithm>

#include "reactions.h"

namespace sweep
{

constexpr const char* success = "XML file was built successfully. This is the normal return.\n";
constexpr size_t slots = 8;

class Follower
{
public:
    explicit Follower(const Result& run) : result(run) {}

    Account follow()
    {
        for (const Call& call : callsOf(result)) {
            if (call.name == "program") {
                followProgram(call);
            } else if (call.name == "end_session") {
                followEnd(call);
            } else {
                followCall(call);
            }
        }
        closeDrawers();
        finish();
        return std::move(account);
    }

private:
    void followProgram(const Call& call)
    {
        // The wrapper that answers in place of a log's removal prints to the operator, at once.
        if (commandOf(call) == "rm") account.output.insert(0, outputOf(*call.rule));
        if (commandOf(call) != "qmstat") return;
        expectGoing(call);
        ++stateChecks;
        // A console that gives no answer does not stop a run; one that gives another state does.
        const std::optional<std::string> state = stateOf(call);
        if (call.result == 0 && state && *state != "Operating") {
            account.events.emplace_back("BED00003");
            stop("Check State fails.\n");
        }
    }

    /// The program that was meant, also where the wrapper answered in its place.
    static std::string commandOf(const Call& call)
    {
        if (call.program != "mmquaycmd" || call.arguments.empty()) return call.program;
        return call.arguments[0].substr(call.arguments[0].rfind('/') + 1);
    }

    [[nodiscard]] std::optional<std::string> stateOf(const Call& call) const
    {
        if (call.rule != nullptr) return firstLine(outputOf(*call.rule));
        const auto mtms = std::find(call.arguments.begin(), call.arguments.end(), "-m");
        if (mtms == call.arguments.end() || mtms + 1 == call.arguments.end()) return std::nullopt;
        return result.facility.at("systems").value(*(mtms + 1), "");
    }

    void followEnd(const Call& call)
    {
        account.ended.push_back(call.scope);
        if (call.result != 0) account.open.push_back(call.scope);
        file(reactionTo(call));
    }

    void followCall(const Call& call)
    {
        expectGoing(call);
        const Reaction reaction = reactionTo(call);
        const std::string line = lineOf(call);
        file(reaction);
        note(call, reaction);
        if (reaction.course == Course::minor) account.minorErrors = true;
        if (reaction.course == Course::ends) partitionsEnded = true;
        if (reaction.course == Course::stops) stop(line);
    }

    void file(const Reaction& reaction)
    {
        if (!reaction.code.empty()) account.events.emplace_back(reaction.code);
    }

    void stop(const std::string& line)
    {
        account.failed = true;
        account.output += line;
    }

    /// Nothing is asked after the step that stopped the run, and of partitions nothing after their end.
    void expectGoing(const Call& call)
    {
        const bool afterStop = account.failed;
        const bool afterPartitions = partitionsEnded && call.name != "program" && !isStatusQuery(call);
        if ((afterStop || afterPartitions) && account.wrongCall.empty()) {
            account.wrongCall = call.name + " " + call.className + call.program + " (" +
                                std::to_string(call.seq) + ") after " +
                                (afterStop ? "the run failed" : "the partitions ended");
        }
    }

    static bool isStatusQuery(const Call& call)
    {
        return call.name == "query_d_select" && call.className == "Orvik.ManagedNode";
    }

    /// What the run prints when this call stops it.
    std::string lineOf(const Call& call)
    {
        if (call.name == "start_session") return "Start VALE session fails.\n";
        if (call.className == "Orvik.TarnStorageFacilitySystem" ||
            call.className == "Orvik.TarnStorageFacility") {
            return "Query Partner System fails.\n";
        }
        if (isPartitionCheck(call)) return "Query Partition fails.\n";
        if (isStatusQuery(call)) return statusLine();
        if (call.className == "Orvik.ManagedNode") return "Query VALE Id fails.\n";
        const bool printsItself = call.className == "Orvik.TarnSegmentPool" && call.answer == Answer::failed;
        return (printsItself ? segmentPoolLine(call) : "") + "Add System Kord fails.\n";
    }

    static bool isPartitionCheck(const Call& call)
    {
        return call.className == "Orvik.TarnStorageFacilityPartition" &&
               call.selection.find("&&") == std::string::npos;
    }

    /// The status of every partition, then of every partner's; all again after the collection. A blank stands
    /// before the line feed of the first check's line only.
    std::string statusLine()
    {
        const size_t round = statusQueries++ / std::max<size_t>(partitions, 1);
        if (round % 2 == 1) return "Query VALE Partner Status fails.\n";
        return round == 0 ? "Query VALE Status fails. \n" : "Query VALE Status fails.\n";
    }

    static std::string segmentPoolLine(const Call& call)
    {
        const std::string message = call.rule != nullptr && call.rule->contains("fails")
                                        ? call.rule->at("fails").value("message", "")
                                        : "";
        return "Orvik.TarnSegmentPool " + std::to_string(call.result) + ", " + message + "\n";
    }

    void note(const Call& call, const Reaction& reaction)
    {
        if (call.name == "start_session") noteSession(call);
        if (isPartitionCheck(call) && partitions == 0) partitions = std::min(call.count, slots);
        noteDrawers(call);
        noteResources(call);
        noteCounts(call, reaction);
    }

    void noteSession(const Call& call)
    {
        if (call.result == 0) startedScopes.push_back(call.scope);
        if (call.scope != 4) account.cleanedUp = call.result == 0;
        if (call.scope == 4) account.document = call.result != -1;
    }

    static bool isAnswered(const Call& call)
    {
        return call.answer == Answer::regular || call.answer == Answer::bare;
    }

    /// Each partition whose cards are found opens a list in its drawer; each drawer closes one, from the
    /// first on that has cards.
    void noteDrawers(const Call& call)
    {
        if (call.className != "Orvik.TarnNVC") return;
        if (cardQueries++ % std::max<size_t>(partitions, 1) == 0) closeDrawers();
        inDrawer = true;
        if (isAnswered(call)) ++openLists;
    }

    void closeDrawers()
    {
        if (!inDrawer) return;
        cardsSeen = cardsSeen || openLists > 0;
        account.missingClosings += std::max(0, openLists - 1);
        if (openLists == 0 && cardsSeen) ++account.extraClosings;
        openLists = 0;
        inDrawer = false;
    }

    void noteResources(const Call& call)
    {
        const std::string name(displayNameOf(call));
        if (name.empty()) return;
        const size_t one = call.answer == Answer::empty && showsNothingAsOne(call) ? 1 : 0;
        account.resources[name] += isAnswered(call) ? call.count : one;
    }

    void noteCounts(const Call& call, const Reaction& reaction)
    {
        if (!isCounted(call)) return;
        const bool counted = call.answer == Answer::regular && reaction.course == Course::goes;
        counts.push_back(counted ? call.handles : 0);
        if (counts.size() < 17 || reaction.course == Course::stops) return;
        account.counts.push_back(countsText());
        counts.clear();
    }

    /// Volumes 0 to 7, ports 0 to 4, objects 0, 1, 3 and 4: nothing counts the objects 2.
    std::string countsText()
    {
        counts.insert(counts.begin() + 15, 0);
        std::string text;
        for (size_t i = 0; i < counts.size(); ++i) {
            const std::string name = i < 8    ? "v" + std::to_string(i)
                                     : i < 13 ? "p" + std::to_string(i - 8)
                                              : "o" + std::to_string(i - 13);
            text += name + "=" + std::to_string(counts[i]) + ",";
        }
        return text;
    }

    void finish()
    {
        if (!account.cleanedUp) {
            account.open = startedScopes;
        } else {
            for (const int scope : {1, 4, 2}) {
                const bool started =
                    std::find(startedScopes.begin(), startedScopes.end(), scope) != startedScopes.end();
                if (started) account.toEnd.push_back(scope);
            }
        }
        if (account.failed) return;
        account.output += success;
        if (statusQueries != 4 * partitions || stateChecks != 4) {
            account.wrongCall = "the checks were not all made twice";
        }
    }

    const Result& result;
    Account account;
    size_t partitions = 0;
    size_t statusQueries = 0;
    size_t stateChecks = 0;
    bool partitionsEnded = false;
    std::vector<int> startedScopes;
    size_t cardQueries = 0;
    int openLists = 0;
    bool inDrawer = false;
    bool cardsSeen = false;
    std::vector<size_t> counts;
};

Account accountOf(const Result& result)
{
    return Follower(result).follow();
}

} // namespace sweep
