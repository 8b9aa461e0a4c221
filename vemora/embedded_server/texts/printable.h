#pragma once

#include <string>
#include <string_view>

#include "vemora/platform/export.h"

namespace kuv::vemora::embedded_server {

/// A text as a person may be shown it, in one line: what a terminal would obey (control
/// characters), what breaks or turns the line around it, what nobody can see, and bytes that are no
/// letter are spelled out as \x1b, \u202e or \U000e0041. All else stays as it is, a backslash too:
/// this is for reading, JSON for reading back. Asked again, it changes nothing more.
///
/// Joiners and variation selectors stay where they belong: in scripts from U+0600 on (Arabic, those
/// of India, pictures) a word or a sign is another one without them. Anywhere else, or where there
/// is a second one, they could only hide something.
VEMORA_API std::string printable(std::string_view text);

}  // namespace kuv::vemora::embedded_server
