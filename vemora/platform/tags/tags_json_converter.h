// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <json/value.h>

#include <set>

#include "vemora/platform/export.h"
#include "vemora/platform/tags/tag_search_term.h"

namespace kuv::vemora::Vemora_Tags_JSON_Converter {

/// The search terms that a JSON tag filter stands for, e.g.
/// `{"site": "north", "indoor": null, "role": ["gate", "dock"]}`: a string asks for the tag with
/// that value, null for the tag alone, an array of both for any one of them.
/// Throws an error that names the offending tag for anything else: a Tag_Filter_Error, so that it
/// can be told where in its document the filter is wrong. Whatever is thrown rejects the document,
/// with its text as the error. Never called with null.
VEMORA_API std::set<ODB_Utils::Tag_Search_Term> parse_search_tags(const Json::Value& tags);

}  // namespace kuv::vemora::Vemora_Tags_JSON_Converter
