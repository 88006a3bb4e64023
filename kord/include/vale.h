// The client interface of Vale, the console's resource manager: sessions by scope, queries, enumerations
// and actions over classes of resources, and the record of the last failed call.
//
// Plain C records and C linkage, so that the console's own libraries, a simulated client or a test in any
// language can stand behind it. The calls on errors live in libvale_cu, all others in libvale_mc.
//
// Every call returns 0 for success. After a failed call its out-arguments are null and 0, and
// vale_get_error gives the reason. A null text anywhere in a response reads as an empty one.

#ifndef VALE_H
#define VALE_H

#include <stdint.h> // NOLINT(modernize-deprecated-headers): C programs include this file too

#ifdef __cplusplus
extern "C" {
#endif

// NOLINTBEGIN(modernize-use-using): C programs include this file too

typedef struct ValeSession ValeSession;
typedef struct ValeResource ValeResource;
typedef struct ValeError ValeError;
typedef ValeSession* ValeSessionHandle;
typedef ValeResource* ValeResourceHandle;
typedef ValeError* ValeErrorHandle;

/// First member of every response element; number 0 means no error.
typedef struct ValeErrorNumber {
    uint32_t number;
    const char* ffdcId; ///< first-failure data identifier
    const char* message;
    const char* const* arguments;
    uint32_t argumentCount;
} ValeErrorNumber;

typedef int32_t ValeDataType;
enum {
    VALE_TEXT = 1,
    VALE_INTEGER = 2,
    VALE_UNSIGNED = 3,
    VALE_INTEGER_LIST = 4,
    VALE_TEXT_LIST = 5,
};

typedef struct ValeIntegerList {
    uint32_t count;
    const int32_t* values;
} ValeIntegerList;

typedef struct ValeTextList {
    uint32_t count;
    const char* const* values;
} ValeTextList;

typedef union ValeValue {
    const char* text;
    int32_t integer;
    uint32_t uinteger;
    const ValeIntegerList* integers;
    const ValeTextList* texts;
} ValeValue;

typedef struct ValeAttribute {
    const char* name;
    uint32_t identifier;
    int32_t type; ///< a ValeDataType
    ValeValue value;
} ValeAttribute;

/// One resource that a query found.
typedef struct ValeQueryResponse {
    ValeErrorNumber error;
    ValeResourceHandle handle;
    const ValeAttribute* attributes;
    uint32_t attributeCount;
} ValeQueryResponse;

/// The handles of the resources that an enumeration found.
typedef struct ValeEnumerateResponse {
    ValeErrorNumber error;
    const char* className;
    const ValeResourceHandle* handles;
    uint32_t handleCount;
} ValeEnumerateResponse;

typedef struct ValeElement {
    int32_t type; ///< a ValeDataType
    ValeValue value;
} ValeElement;

typedef struct ValeStructuredData {
    uint32_t count;
    const ValeElement* elements;
} ValeStructuredData;

/// What one resource answered to an action.
typedef struct ValeActionResponse {
    ValeErrorNumber error;
    ValeStructuredData result;
} ValeActionResponse;

// NOLINTEND(modernize-use-using)

/// Scope 1 is the console itself, 2 its shared resources, 4 the domain. No contacts: the local console.
int32_t vale_start_session(const char* const* contacts, uint32_t contactCount, uint32_t scope,
                           ValeSessionHandle* session);
int32_t vale_end_session(ValeSessionHandle session);

/// One response for each resource of the class that the selection matches (null: every resource), with the
/// requested attributes in the requested order: persistent ones by p_select, dynamic ones by d_select.
int32_t vale_query_p_select(ValeSessionHandle session, ValeQueryResponse** responses, uint32_t* count,
                            const char* className, const char* selection, const char* const* attributes,
                            uint32_t attributeCount);
int32_t vale_query_d_select(ValeSessionHandle session, ValeQueryResponse** responses, uint32_t* count,
                            const char* className, const char* selection, const char* const* attributes,
                            uint32_t attributeCount);

int32_t vale_enumerate_resources(ValeSessionHandle session, ValeEnumerateResponse** responses,
                                 uint32_t* count, const char* className, const char* selection);

int32_t vale_invoke_action(ValeSessionHandle session, ValeActionResponse** responses, uint32_t* count,
                           ValeResourceHandle resource, const char* action, const ValeStructuredData* input);

/// Releases a whole response array with every text in it; null is allowed.
int32_t vale_free_response(void* responses);

/// The error of the last failed call, and its message; each is released by its own call.
int32_t vale_get_error(ValeErrorHandle* error);
int32_t vale_get_errmsg(ValeErrorHandle error, const char** message);
int32_t vale_rel_errmsg(const char* message);
int32_t vale_rel_error(ValeErrorHandle error);

#ifdef __cplusplus
}
#endif

#endif
