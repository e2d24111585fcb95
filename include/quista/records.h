// Every record that crosses the library's boundary.
#pragma once

#include "quista/records/adapter_records.h"
#include "quista/records/disk_records.h"
#include "quista/records/lun_records.h"
#include "quista/records/mpio_records.h"
#include "quista/records/policy_records.h"
#include "quista/records/version_records.h"
