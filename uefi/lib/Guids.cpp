// The GUIDs the module and the hosts refer to, defined once.
#include <Protocol/DevicePath.h>
#include <Protocol/Hii.h>
#include <Protocol/Host/EsaGuiDriver.h>
#include <Protocol/Host/QolCommands.h>
#include <Protocol/Host/RaidSetupDataSource.h>
#include <Protocol/Host/ShellCommand.h>
#include <Protocol/Host/SlotInventory.h>
#include <Protocol/Host/TarnSetup.h>
#include <Protocol/Host/TarnXml.h>
#include <Protocol/LoadedImage.h>
#include <Protocol/PciIo.h>
#include <Protocol/SerialIo.h>
#include <Protocol/SimpleFileSystem.h>
#include <Protocol/Smbios.h>

constinit EFI_GUID gEfiLoadedImageProtocolGuid = EFI_LOADED_IMAGE_PROTOCOL_GUID;
constinit EFI_GUID gEfiSimpleFileSystemProtocolGuid =
    EFI_SIMPLE_FILE_SYSTEM_PROTOCOL_GUID;
constinit EFI_GUID gEfiPciIoProtocolGuid = EFI_PCI_IO_PROTOCOL_GUID;
constinit EFI_GUID gEfiSerialIoProtocolGuid = EFI_SERIAL_IO_PROTOCOL_GUID;
constinit EFI_GUID gEfiDevicePathProtocolGuid = EFI_DEVICE_PATH_PROTOCOL_GUID;
constinit EFI_GUID gEfiLoadedImageDevicePathProtocolGuid =
    EFI_LOADED_IMAGE_DEVICE_PATH_PROTOCOL_GUID;
constinit EFI_GUID gEfiHiiPackageListProtocolGuid =
    EFI_HII_PACKAGE_LIST_PROTOCOL_GUID;
constinit EFI_GUID gEfiHiiDatabaseProtocolGuid = EFI_HII_DATABASE_PROTOCOL_GUID;
constinit EFI_GUID gEfiHiiStringProtocolGuid = EFI_HII_STRING_PROTOCOL_GUID;
constinit EFI_GUID gEfiHiiConfigRoutingProtocolGuid =
    EFI_HII_CONFIG_ROUTING_PROTOCOL_GUID;
constinit EFI_GUID gEfiHiiFontProtocolGuid = EFI_HII_FONT_PROTOCOL_GUID;
constinit EFI_GUID gEfiHiiImageProtocolGuid = EFI_HII_IMAGE_PROTOCOL_GUID;
constinit EFI_GUID gEfiSmbiosTableGuid = SMBIOS_TABLE_GUID;
constinit EFI_GUID gEfiSmbios3TableGuid = SMBIOS3_TABLE_GUID;

constinit EFI_GUID gTarnSetupProtocolGuid = TARN_SETUP_PROTOCOL_GUID;
constinit EFI_GUID gEsaGuiDriverProtocolGuid = ESA_GUI_DRIVER_PROTOCOL_GUID;
constinit EFI_GUID gSlotInventoryProtocolGuid = SLOT_INVENTORY_PROTOCOL_GUID;
constinit EFI_GUID gEfiTarnXmlProtocolGuid = EFI_TARNXML_PROTOCOL_GUID;
constinit EFI_GUID gShellCommandProtocolGuid = SHELL_COMMAND_PROTOCOL_GUID;
constinit EFI_GUID gQolCommandsProtocolGuid = QOL_COMMANDS_PROTOCOL_GUID;
constinit EFI_GUID gRaidSetupDataSourceProtocolGuid =
    RAID_SETUP_DATA_SOURCE_PROTOCOL_GUID;
