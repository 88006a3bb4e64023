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
    explicit Follower(const Result& result) : result_(result) {}

    Account follow()
    {
        for (const Call& call : callsOf(result_)) {
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
        return std::move(account_);
    }

private:
    void followProgram(const Call& call)
    {
        // The wrapper that answers in place of a log's removal prints to the operator, at once.
        if (commandOf(call) == "rm") account_.output.insert(0, outputOf(*call.rule));
        if (commandOf(call) != "qmstat") return;
        expectGoing(call);
        ++stateChecks_;
        // A console that gives no answer does not stop a run; one that gives another state does.
        const std::optional<std::string> state = stateOf(call);
        if (call.result == 0 && state && *state != "Operating") {
            account_.events.emplace_back("BED00003");
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
        return result_.facility.at("systems").value(*(mtms + 1), "");
    }

    void followEnd(const Call& call)
    {
        account_.ended.push_back(call.scope);
        if (call.result != 0) account_.open.push_back(call.scope);
        file(reactionTo(call));
    }

    void followCall(const Call& call)
    {
        expectGoing(call);
        const Reaction reaction = reactionTo(call);
        const std::string line = lineOf(call);
        file(reaction);
        note(call, reaction);
        if (reaction.course == Course::minor) account_.minorErrors = true;
        if (reaction.course == Course::ends) partitionsEnded_ = true;
        if (reaction.course == Course::stops) stop(line);
    }

    void file(const Reaction& reaction)
    {
        if (!reaction.code.empty()) account_.events.emplace_back(reaction.code);
    }

    void stop(const std::string& line)
    {
        account_.failed = true;
        account_.output += line;
    }

    /// Nothing is asked after the step that stopped the run, and of partitions nothing after their end.
    void expectGoing(const Call& call)
    {
        const bool afterStop = account_.failed;
        const bool afterPartitions = partitionsEnded_ && call.name != "program" && !isStatusQuery(call);
        if ((afterStop || afterPartitions) && account_.wrongCall.empty()) {
            account_.wrongCall = call.name + " " + call.className + call.program + " (" +
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
        const size_t round = statusQueries_++ / std::max<size_t>(partitions_, 1);
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
        if (isPartitionCheck(call) && partitions_ == 0) partitions_ = std::min(call.count, slots);
        noteDrawers(call);
        noteResources(call);
        noteCounts(call, reaction);
    }

    void noteSession(const Call& call)
    {
        if (call.result == 0) started_.push_back(call.scope);
        if (call.scope != 4) account_.cleanedUp = call.result == 0;
        if (call.scope == 4) account_.document = call.result != -1;
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
        if (cardQueries_++ % std::max<size_t>(partitions_, 1) == 0) closeDrawers();
        inDrawer_ = true;
        if (isAnswered(call)) ++openLists_;
    }

    void closeDrawers()
    {
        if (!inDrawer_) return;
        cardsSeen_ = cardsSeen_ || openLists_ > 0;
        account_.missingClosings += std::max(0, openLists_ - 1);
        if (openLists_ == 0 && cardsSeen_) ++account_.extraClosings;
        openLists_ = 0;
        inDrawer_ = false;
    }

    void noteResources(const Call& call)
    {
        const std::string name(displayNameOf(call));
        if (name.empty()) return;
        const size_t one = call.answer == Answer::empty && showsNothingAsOne(call) ? 1 : 0;
        account_.resources[name] += isAnswered(call) ? call.count : one;
    }

    void noteCounts(const Call& call, const Reaction& reaction)
    {
        if (!isCounted(call)) return;
        const bool counted = call.answer == Answer::regular && reaction.course == Course::goes;
        counts_.push_back(counted ? call.handles : 0);
        if (counts_.size() < 17 || reaction.course == Course::stops) return;
        account_.counts.push_back(countsText());
        counts_.clear();
    }

    /// Volumes 0 to 7, ports 0 to 4, objects 0, 1, 3 and 4: nothing counts the objects 2.
    std::string countsText()
    {
        counts_.insert(counts_.begin() + 15, 0);
        std::string text;
        for (size_t i = 0; i < counts_.size(); ++i) {
            const std::string name = i < 8    ? "v" + std::to_string(i)
                                     : i < 13 ? "p" + std::to_string(i - 8)
                                              : "o" + std::to_string(i - 13);
            text += name + "=" + std::to_string(counts_[i]) + ",";
        }
        return text;
    }

    void finish()
    {
        if (!account_.cleanedUp) {
            account_.open = started_;
        } else {
            for (const int scope : {1, 4, 2}) {
                const bool started = std::find(started_.begin(), started_.end(), scope) != started_.end();
                if (started) account_.toEnd.push_back(scope);
            }
        }
        if (account_.failed) return;
        account_.output += success;
        if (statusQueries_ != 4 * partitions_ || stateChecks_ != 4) {
            account_.wrongCall = "the checks were not all made twice";
        }
    }

    const Result& result_;
    Account account_;
    size_t partitions_ = 0;
    size_t statusQueries_ = 0;
    size_t stateChecks_ = 0;
    bool partitionsEnded_ = false;
    std::vector<int> started_;
    size_t cardQueries_ = 0;
    int openLists_ = 0;
    bool inDrawer_ = false;
    bool cardsSeen_ = false;
    std::vector<size_t> counts_;
};

Account accountOf(const Result& result)
{
    return Follower(result).follow();
}

} // namespace sweep
