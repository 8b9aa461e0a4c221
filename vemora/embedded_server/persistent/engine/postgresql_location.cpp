// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/engine/postgresql_location.h"

#include <fmt/format.h>
#include <libpq-fe.h>

#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "vemora/embedded_server/persistent/database_error.h"

namespace kuv::vemora::embedded_server {
namespace {

constexpr const char* default_schema = "vemora";
constexpr std::size_t longest_identifier = 63;  // the server cuts longer ones off

using Options = std::unique_ptr<PQconninfoOption, decltype(&PQconninfoFree)>;

int digit_value(char letter) {
  constexpr std::string_view digits = "0123456789abcdef0123456789ABCDEF";
  const std::size_t place = digits.find(letter);
  return place == std::string_view::npos ? -1 : static_cast<int>(place % 16);
}

std::string decode_percents(std::string_view text) {
  std::string decoded;
  for (std::size_t place = 0; place < text.size(); ++place) {
    if (text[place] != '%') {
      decoded += text[place];
      continue;
    }
    const int high = place + 2 < text.size() ? digit_value(text[place + 1]) : -1;
    const int low = place + 2 < text.size() ? digit_value(text[place + 2]) : -1;
    if (high < 0 || low < 0) {
      throw Database_Error("the name of the schema in the database's URL has a broken % in it");
    }
    decoded += static_cast<char>(high * 16 + low);
    place += 2;
  }
  return decoded;
}

std::vector<std::string_view> split(std::string_view text, char separator) {
  std::vector<std::string_view> parts;
  while (true) {
    const std::size_t end = text.find(separator);
    parts.push_back(text.substr(0, end));
    if (end == std::string_view::npos) {
      return parts;
    }
    text.remove_prefix(end + 1);
  }
}

/// Takes the parameter that is ours out of a URL; nothing when it is not there.
std::optional<std::string> take_schema(std::string& url) {
  const std::size_t question = url.find('?');
  if (question == std::string::npos) {
    return std::nullopt;
  }
  constexpr std::string_view ours = "schema=";
  std::optional<std::string> schema;
  std::string rest;
  const std::string parameters = url.substr(question + 1);
  for (const std::string_view parameter : split(parameters, '&')) {
    if (parameter.substr(0, ours.size()) == ours) {
      schema = decode_percents(parameter.substr(ours.size()));
    } else if (!parameter.empty()) {
      rest += (rest.empty() ? "?" : "&") + std::string(parameter);
    }
  }
  url = url.substr(0, question) + rest;
  return schema;
}

void require_schema_name(const std::string& schema) {
  if (schema.empty() || schema.size() > longest_identifier ||
      schema.find('\0') != std::string::npos) {
    throw Database_Error(
        fmt::format("the name of a schema has 1 to {} bytes, none of them 0", longest_identifier));
  }
}

std::string value_of(const Options& options, std::string_view keyword) {
  for (const PQconninfoOption* option = options.get(); option->keyword != nullptr; ++option) {
    if (option->keyword == keyword && option->val != nullptr) {
      return option->val;
    }
  }
  return "";
}

/// A folder as host, where the server's socket is, stands among the parameters.
std::string shown(const Options& options, const std::string& schema) {
  const std::string user = value_of(options, "user");
  const std::string host = value_of(options, "host");
  const std::string port = value_of(options, "port");
  const bool socket = !host.empty() && host.front() == '/';
  const std::string authority =
      socket || port.empty() ? (socket ? "" : host) : fmt::format("{}:{}", host, port);
  const std::string place =
      socket ? fmt::format("host={}&", host) + (port.empty() ? "" : fmt::format("port={}&", port))
             : "";
  return fmt::format("postgresql://{}{}/{}?{}schema={}", user.empty() ? "" : user + "@", authority,
                     value_of(options, "dbname"), place, schema);
}

}  // namespace

bool is_postgresql_location(const std::string& location) {
  return location.rfind("postgresql://", 0) == 0 || location.rfind("postgres://", 0) == 0;
}

PostgreSQL_Location parse_postgresql_location(const std::string& location) {
  PostgreSQL_Location parsed;
  parsed.connection = location;
  parsed.schema = take_schema(parsed.connection).value_or(default_schema);
  require_schema_name(parsed.schema);
  const Options options(PQconninfoParse(parsed.connection.c_str(), nullptr), &PQconninfoFree);
  if (!options) {
    // The client library's own words would repeat the URL, and the password in it.
    throw Database_Error(
        "the database's URL is not of the form "
        "postgresql://user@host:port/database?schema=name");
  }
  parsed.shown = shown(options, parsed.schema);
  return parsed;
}

}  // namespace kuv::vemora::embedded_server
