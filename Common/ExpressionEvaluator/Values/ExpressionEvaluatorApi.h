#pragma once

/// Marks what the plug-in offers to other plug-ins; everything else stays hidden.
#define EE_API __attribute__((visibility("default")))
