#pragma once

/// Marks what libHost.so offers to plug-ins; everything else stays hidden.
#define HOST_API __attribute__((visibility("default")))
