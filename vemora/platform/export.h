#pragma once

/// Marks what a shared library of this system shows to others; everything else stays hidden.
#define VEMORA_API __attribute__((visibility("default")))
