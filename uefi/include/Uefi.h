// Umbrella header: base types, lists and the system table.
#pragma once

#include <Uefi/Base.h>
#include <Uefi/List.h>
#include <Uefi/SystemTable.h>
