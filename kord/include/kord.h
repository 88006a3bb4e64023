// Everything that the collector's modules offer, for those outside it: tests and benchmarks.

#pragma once

#include "kordRec.h"
#include "vale.h"

#include "../c/addCecEnclKord.h"
#include "../c/addCheckKord.h"
#include "../c/addCountKord.h"
#include "../c/addErrLogKord.h"
#include "../c/addHostKord.h"
#include "../c/addIoEnclKord.h"
#include "../c/addPartitionKord.h"
#include "../c/addProcessKord.h"
#include "../c/addQuayEnclKord.h"
#include "../c/addQueryKord.h"
#include "../c/addRackEnclKord.h"
#include "../c/addSessionKord.h"
#include "../c/addStorConfigKord.h"
#include "../c/addStorEnclKord.h"
#include "../c/addTarnKord.h"
#include "../c/addTextKord.h"
#include "../c/addTrcKord.h"
#include "../c/addUtilKord.h"
#include "../c/addXmlKord.h"
