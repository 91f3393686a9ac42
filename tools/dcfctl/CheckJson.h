// The results of check and explain, as keys of a JSON document. Used by the renderer. Pure functions.
#ifndef DCFCTL_CHECK_JSON_H
#define DCFCTL_CHECK_JSON_H

#include "CheckVerb.h"
#include "ExplainVerb.h"
#include "JsonParts.h"

namespace dcfctl {

/// All but the findings, which can be many and are written one by one.
void AddTo(Json& json, const CheckResult& result);
[[nodiscard]] Json CheckFindingJson(const CheckFinding& finding);
void AddTo(Json& json, const ExplainResult& result);

} // namespace dcfctl

#endif
