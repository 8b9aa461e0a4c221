// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

// How the server's own records stand in the database. Only their plain columns are mapped; what
// hangs on a record (tags, links, sources) has rows of its own, see rows.h.

#include "vemora/platform/odb_runtime.h"

#include <odb/core.hxx>

#include "vemora/embedded_server/persistent/mapping/shared_records.h"
#include "vemora/platform/records/camera.h"
#include "vemora/platform/records/metadata_event_category.h"
#include "vemora/platform/records/schedule.h"
#include "vemora/platform/records/server.h"
#include "vemora/platform/records/trigger.h"

#ifdef ODB_COMPILER

#pragma db object(kuv::vemora::server) table("server") pointer(std::shared_ptr) definition
#pragma db member(kuv::vemora::server::id) id
#pragma db member(kuv::vemora::server::tags) transient

#pragma db object(kuv::vemora::camera) table("camera") pointer(std::shared_ptr) definition
#pragma db member(kuv::vemora::camera::id) id
#pragma db member(kuv::vemora::camera::tags) transient
#pragma db member(kuv::vemora::camera::capabilities) transient

#pragma db object(kuv::vemora::schedule) table("schedule") pointer(std::shared_ptr) definition
#pragma db member(kuv::vemora::schedule::id) id

#pragma db object(kuv::vemora::metadata_event_category) table("event_category") \
    pointer(std::shared_ptr) definition
#pragma db member(kuv::vemora::metadata_event_category::id) id

#pragma db object(kuv::vemora::trigger) table("trigger_record") pointer(std::shared_ptr) definition
#pragma db member(kuv::vemora::trigger::id) id
#pragma db member(kuv::vemora::trigger::schedules) transient
#pragma db member(kuv::vemora::trigger::sources) transient

#endif
