// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

/// Marks what a shared library of this system shows to others; everything else stays hidden.
#define VEMORA_API __attribute__((visibility("default")))
