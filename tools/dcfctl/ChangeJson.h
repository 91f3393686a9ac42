// The results of the verbs that change a card or name files, as keys of a JSON document. Used by the renderer. Pure
// functions.
#ifndef DCFCTL_CHANGE_JSON_H
#define DCFCTL_CHANGE_JSON_H

#include "AddVerb.h"
#include "JsonParts.h"
#include "NameVerbs.h"
#include "ProtectVerbs.h"
#include "RemoveVerb.h"
#include "RenumberVerb.h"
#include "SeriesVerb.h"

namespace dcfctl {

void AddTo(Json& json, const RemovalResult& result);
void AddTo(Json& json, const ProtectionResult& result);
void AddTo(Json& json, const LatestNameResult& result);
void AddTo(Json& json, const CapacityResult& result);
void AddTo(Json& json, const NextNameResult& result);
void AddTo(Json& json, const AddResult& result);
void AddTo(Json& json, const RenumberResult& result);
void AddTo(Json& json, const SeriesResult& result);

[[nodiscard]] Json RenamesJson(const RenumberPlan& plan);

} // namespace dcfctl

#endif
