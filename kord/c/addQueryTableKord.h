// What the modules tell of their queries; see addTableKord.h.

#pragma once

#include "addQueryKord.h"
#include "addTableKord.h"

/// In an operator's words: what a query asks for, and why there may be none.
struct ToldSubject {
    const char* things = ""; ///< "the drives"
    const char* of = "";     ///< "a storage enclosure, as an image sees them"
    Explanation none = {};   ///< the cause of an empty answer, and what to do about it
};

/// A query, and where its lines say more than those of every query.
struct ToldQuery {
    const Query* query;
    const char* function = nullptr; ///< who asks, where neither the entry line nor the reports name it
    ToldSubject subject = {};
    Explanation selection = {};
    Explanation callFailed = {};
    Explanation noResources = {};
    Explanation response = {};
    Explanation emptyFirst = {};
    Explanation success = {};
    int32_t failsAs = failed; ///< what its caller passes on when it fails
};

/// A failure that the walk of a query finds.
struct ToldFailure {
    const Query* query;
    const Failure* failure;
    Explanation explanation = {};
};

/// The queries of one module.
struct ToldQueries {
    const char* module;
    std::span<const ToldQuery> queries;
    std::span<const Counter> counters = {};
    std::span<const ToldSubject> counted = {}; ///< what the counters count, in their order
    std::span<const ToldFailure> failures = {};
};

extern const ToldQueries addCheckQueries;
extern const ToldQueries addCecEnclQueries;
extern const ToldQueries addIoEnclQueries;
extern const ToldQueries addStorEnclQueries;
extern const ToldQueries addRackEnclQueries;
extern const ToldQueries addQuayEnclQueries;
extern const ToldQueries addPartitionQueries;
extern const ToldQueries addCountQueries;
extern const ToldQueries addHostQueries;
extern const ToldQueries addStorConfigQueries;
extern const ToldQueries addUncalledQueries;
