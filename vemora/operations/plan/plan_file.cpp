// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/operations/plan/plan_file.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string_view>
#include <system_error>
#include <utility>

#include "vemora/embedded_server/documents/json_document.h"
#include "vemora/embedded_server/persistent/history.h"
#include "vemora/embedded_server/persistent/site_digest.h"
#include "vemora/embedded_server/texts/sha256.h"

namespace kuv::vemora::operations {
namespace {

using embedded_server::Database;
using embedded_server::Json_Document;

constexpr std::string_view beginning = R"({"vemoraTriggersPlan":)";
constexpr int current_version = 2;

/// Two documents, each byte of which may be escaped.
constexpr std::size_t largest_plan = 12 * embedded_server::largest_document;

/// A JSON string of these very bytes, be they UTF-8 or not.
std::string json_string(std::string_view bytes) {
  std::string text = "\"";
  for (const char byte : bytes) {
    if (byte == '"' || byte == '\\') {
      text += '\\';
      text += byte;
    } else if (static_cast<unsigned char>(byte) < 0x20) {
      text += fmt::format("\\u{:04x}", static_cast<unsigned>(byte));
    } else {
      text += byte;
    }
  }
  return text + '"';
}

/// Differs if anything else of the plan does.
std::string seal_of(const Kept_Plan& plan) {
  embedded_server::SHA256 digest;
  const std::string mapping = plan.mapping.value_or("");
  digest.add(fmt::format("{} {} {} {} {} {} ", current_version, plan.server_id, plan.last_pass,
                         plan.config.size(), plan.mapping.has_value(), mapping.size()));
  for (const std::string& text : {plan.config, mapping, plan.site_digest}) {
    digest.add(text);
  }
  return digest.finish();
}

std::string text_of(const Kept_Plan& plan) {
  return fmt::format(
      "{}{},\"serverId\":{},\"lastPass\":{},\"site\":\"{}\",\"seal\":\"{}\",\n\"mapping\":{},"
      "\n\"config\":{}}}\n",
      beginning, current_version, plan.server_id, plan.last_pass, plan.site_digest, seal_of(plan),
      plan.mapping ? json_string(*plan.mapping) : "null", json_string(plan.config));
}

class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  ~Descriptor() {
    if (number_ >= 0) {
      ::close(number_);
    }
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  int number() const { return number_; }

 private:
  int number_;
};

[[noreturn]] void fail(const std::string& doing, const std::string& path) {
  throw Plan_File_Error(
      fmt::format("cannot {} {}: {}", doing, path, std::generic_category().message(errno)));
}

void write_all(int descriptor, std::string_view text, const std::string& path) {
  while (!text.empty()) {
    const ssize_t written = ::write(descriptor, text.data(), text.size());
    if (written >= 0) {
      text.remove_prefix(static_cast<std::size_t>(written));
    } else if (errno != EINTR) {
      fail("write", path);
    }
  }
}

/// A file that is not complete yet, and is removed unless it was put in its place.
class Unfinished_File {
 public:
  explicit Unfinished_File(const std::string& place) : place_(place), path_(place + ".part") {}
  ~Unfinished_File() {
    if (exists_) {
      ::unlink(path_.c_str());
    }
  }
  Unfinished_File(const Unfinished_File&) = delete;
  Unfinished_File& operator=(const Unfinished_File&) = delete;

  void write(std::string_view text) {
    ::unlink(path_.c_str());  // one that was left behind may have another mode or owner
    const Descriptor file(::open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    if (file.number() < 0) {
      fail("write", path_);
    }
    exists_ = true;
    write_all(file.number(), text, path_);
    if (::fsync(file.number()) != 0) {
      fail("write", path_);
    }
  }

  void put_in_place() {
    if (::rename(path_.c_str(), place_.c_str()) != 0) {
      fail("write", place_);
    }
    exists_ = false;
  }

 private:
  std::string place_;
  std::string path_;
  bool exists_ = false;
};

bool begins_like_a_plan(const std::string& path) {
  const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  struct stat status {};
  if (file.number() < 0 || ::fstat(file.number(), &status) != 0) {
    fail("read", path);
  }
  std::string begin(beginning.size(), '\0');
  return S_ISREG(status.st_mode) &&
         ::read(file.number(), begin.data(), begin.size()) == static_cast<ssize_t>(begin.size()) &&
         begin == beginning;
}

[[noreturn]] void fail_as_damaged() {
  throw Plan_File_Error("the plan is damaged; make it again");
}

std::string string_of(const Json::Value& value) {
  if (!value.isString()) {
    fail_as_damaged();
  }
  return value.asString();
}

std::uint64_t number_of(const Json::Value& value) {
  if (!value.isUInt64()) {
    fail_as_damaged();
  }
  return value.asUInt64();
}

void require_known_version(const Json::Value& version) {
  if (version.isNull()) {
    throw Plan_File_Error("this is not a plan; plan --out writes one");
  }
  if (!version.isInt() || version.asInt() != current_version) {
    throw Plan_File_Error("this version cannot read the plan; make it again with this version");
  }
}

Kept_Plan plan_in(const Json::Value& value) {
  require_known_version(value.isObject() ? value[std::string("vemoraTriggersPlan")]
                                         : Json::Value());
  Kept_Plan plan;
  plan.server_id = number_of(value["serverId"]);
  plan.last_pass = number_of(value["lastPass"]);
  plan.config = string_of(value["config"]);
  if (!value["mapping"].isNull()) {
    plan.mapping = string_of(value["mapping"]);
  }
  plan.site_digest = string_of(value["site"]);
  if (string_of(value["seal"]) != seal_of(plan)) {
    fail_as_damaged();
  }
  return plan;
}

}  // namespace

Plan_File::Plan_File(std::string path) : path_(std::move(path)) {}

void Plan_File::require_replaceable() const {
  struct stat status {};
  if (::lstat(path_.c_str(), &status) != 0) {
    if (errno != ENOENT) {
      fail("write", path_);
    }
    return;
  }
  if (!begins_like_a_plan(path_)) {
    throw Plan_File_Error(fmt::format("{} exists and is not a plan, so it is not replaced", path_));
  }
}

void Plan_File::write(const Kept_Plan& plan) const {
  require_replaceable();
  Unfinished_File file(path_);
  file.write(text_of(plan));
  file.put_in_place();
}

Kept_Plan Plan_File::read() const {
  try {
    return plan_in(Json_Document::read(path_, largest_plan).value());
  } catch (const embedded_server::Document_Error& error) {
    throw Plan_File_Error(error.location.line != 0
                              ? fmt::format("this is not a plan, or damaged: {}", error.what())
                              : error.what());
  }
}

embedded_server::Object_To_Pass require_site_of(const Kept_Plan& plan,
                                                std::shared_ptr<Database> database,
                                                std::uint64_t server_id) {
  return [digest = plan.site_digest, planned_server = plan.server_id, last_pass = plan.last_pass,
          database = std::move(database), server_id]() -> std::optional<std::string> {
    if (planned_server != server_id) {
      return fmt::format("The plan is for server {}, not for server {}.", planned_server,
                         server_id);
    }
    if (embedded_server::last_pass_in_history(database) != last_pass ||
        embedded_server::digest_of_site(database) != digest) {
      return "The site has changed since the plan was made. Make the plan again.";
    }
    return std::nullopt;
  };
}

}  // namespace kuv::vemora::operations
