// The whole interface of quista.dll: status codes, records and exports.
#pragma once

#include "quista/adapters.h"
#include "quista/control.h"
#include "quista/frame.h"
#include "quista/luns.h"
#include "quista/mpio.h"
#include "quista/records.h"
#include "quista/status.h"
