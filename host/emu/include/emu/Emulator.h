// Everything of the host-based firmware emulator in one include.
#pragma once

#include "emu/Console.h"
#include "emu/ControllerConnections.h"
#include "emu/Firmware.h"
#include "emu/GuiDriver.h"
#include "emu/HandleDatabase.h"
#include "emu/HostVolume.h"
#include "emu/PciDevice.h"
#include "emu/Pool.h"
#include "emu/QolCommands.h"
#include "emu/SetupProtocol.h"
#include "emu/ShellCommand.h"
#include "emu/SlotInventory.h"
#include "emu/SmbiosTable.h"
#include "emu/TextConversion.h"
#include "emu/VirtualClock.h"
#include "emu/XmlParser.h"
