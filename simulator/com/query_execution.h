// Runs parsed queries over the instances of a namespace.
#pragma once

#include <windows.h>

#include <string_view>

#include "simulator/com/enumerator.h"
#include "simulator/wql/wql_query.h"

namespace quista::simulator {

/// The result for a statement that did not parse; S_OK for one that did.
HRESULT resultOf(WqlStatus status);

/// Whether the class has all the properties that the query selects and compares.
bool fits(const WqlQuery& query, const CimClass& definition);

/// The matching instances; with a list of properties they have these alone.
ResultSet execute(const WqlQuery& query, const CimClassPtr& definition,
                  const Repository& repository, std::wstring_view nameSpace);

}  // namespace quista::simulator
