// The demo module: templates, strings, data source and callbacks.
#include "DemoModule.h"

#include <map>
#include <string>

namespace demo {
namespace {

TARN_SETUP_PROTOCOL *gSetup = nullptr;
HOST_PAGE_NODE *gAdapterPage = nullptr;
HOST_PAGE_NODE *gVolumePage = nullptr;
State gState;

// ---- Templates --------------------------------------------------------------

constexpr HOST_NODE_TEMPLATE kResultNodes[] = {
    {kResultHeading, HOST_CONTROL_LABEL, kStrResult, HOST_DISPLAY_SHOWN,
     {0, HOST_LAYOUT_NEXT_ROW, 0, 0}, nullptr, 0},
    {kResultText, HOST_CONTROL_LABEL, kStrResultText, HOST_DISPLAY_SHOWN,
     {2, HOST_LAYOUT_NEXT_ROW, 0, 0}, nullptr, 0},
};

constexpr HOST_NODE_TEMPLATE kAdapterNodes[] = {
    {kAdapterRadio, HOST_CONTROL_RADIO_GROUP, 0, HOST_DISPLAY_SHOWN,
     {0, 0, 40, 0}, nullptr, 0},
    {kDriveLabel, HOST_CONTROL_LABEL, kStrDriveCount, HOST_DISPLAY_SHOWN,
     {44, 0, 0, 0}, nullptr, 0},
    {kAdvancedCheck, HOST_CONTROL_CHECK_BOX, kStrAdvanced, HOST_DISPLAY_SHOWN,
     {44, 1, 0, 0}, nullptr, 0},
    {kModeCombo, HOST_CONTROL_COMBO_BOX, kStrFast, HOST_DISPLAY_SHOWN,
     {44, 2, 16, 0}, nullptr, 0},
    {kAdvancedLabel, HOST_CONTROL_LABEL, kStrAdvanced, HOST_DISPLAY_HIDDEN,
     {0, 4, 0, 0}, nullptr, 0},
    {kDriveTable, HOST_CONTROL_TABLE, 0, HOST_DISPLAY_SHOWN, {0, 6, 60, 5},
     nullptr, 0},
    {kDeleteButton, HOST_CONTROL_BUTTON, kStrDelete, HOST_DISPLAY_SHOWN,
     {0, 12, 0, 0}, nullptr, 0},
    {kNextButton, HOST_CONTROL_BUTTON, kStrNext, HOST_DISPLAY_SHOWN,
     {64, 12, 0, 0}, nullptr, 0},
};

constexpr HOST_NODE_TEMPLATE kVolumeNodes[] = {
    {kNameEdit, HOST_CONTROL_EDIT_BOX, 0, HOST_DISPLAY_SHOWN, {22, 0, 24, 0},
     nullptr, 0},
    {kCapacitySlider, HOST_CONTROL_SLIDER, kStrCapacity, HOST_DISPLAY_SHOWN,
     {0, 2, 50, 0}, nullptr, 0},
    {kCapacityLabel, HOST_CONTROL_LABEL, 0, HOST_DISPLAY_SHOWN, {0, 3, 0, 0},
     nullptr, 0},
    {kRefreshButton, HOST_CONTROL_IMAGE_BUTTON, kStrRefresh,
     HOST_DISPLAY_SHOWN, {56, 2, 0, 0}, nullptr, 0},
    {kResultGroup, HOST_CONTROL_CONTAINER, 0, HOST_DISPLAY_HIDDEN,
     {0, 5, 0, 0}, kResultNodes, 2},
    {kBackButton, HOST_CONTROL_BUTTON, kStrBack, HOST_DISPLAY_SHOWN,
     {0, 10, 0, 0}, nullptr, 0},
    {kCreateButton, HOST_CONTROL_BUTTON, kStrCreate, HOST_DISPLAY_GRAYED,
     {64, 10, 0, 0}, nullptr, 0},
};

// The volume page: the edit box's caption, a node without a record of its
// own, then the controls.
constexpr HOST_NODE_TEMPLATE kVolumeNodesWithCaption[] = {
    {1, HOST_CONTROL_LABEL, kStrName, HOST_DISPLAY_SHOWN, {0, 0, 0, 0},
     nullptr, 0},
    {2, HOST_CONTROL_NONE, 0, HOST_DISPLAY_SHOWN, {0, 0, 0, 0}, nullptr, 0},
    kVolumeNodes[0], kVolumeNodes[1], kVolumeNodes[2], kVolumeNodes[3],
    kVolumeNodes[4], kVolumeNodes[5], kVolumeNodes[6],
};

constexpr HOST_PAGE_TEMPLATE kAdapterTemplate = {kAdapterPage, kStrAdapterTitle,
                                                 kAdapterNodes, 8};
constexpr HOST_PAGE_TEMPLATE kVolumeTemplate = {
    kVolumePage, kStrVolumeTitle, kVolumeNodesWithCaption, 9};

// ---- Strings ----------------------------------------------------------------

const std::map<EFI_STRING_ID, std::u16string> kEnglish = {
    {kStrAdapterTitle, u"Demo - Select Adapter"},
    {kStrVolumeTitle, u"Demo - Create Virtual Disk"},
    {kStrDriveCount, u"Disk Drives: %d"},
    {kStrAdvanced, u"Show advanced settings"},
    {kStrAdvancedOn, u"Safe mode keeps a spare drive"},
    {kStrDelete, u"Remove"},
    {kStrNext, u"Next"},
    {kStrBack, u"Back"},
    {kStrCreate, u"Create"},
    {kStrRefresh, u"Refresh"},
    {kStrFast, u"Fast"},
    {kStrSafe, u"Safe"},
    {kStrMember, u"Member"},
    {kStrSpare, u"DHS"},
    {kStrName, u"Virtual Disk Name:"},
    {kStrState, u"Use"},
    {kStrRole, u"Role"},
    {kStrDeleteQuestion, u"Do you want to remove the drive from the list?"},
    {kStrWarning, u"Warning"},
    {kStrCapacity, u"Capacity:"},
    {kStrResult, u"Result"},
    {kStrResultText, u"The virtual disk was created."},
    {kStrHelpHeading, u"Adapter Selection"},
    {kStrHelpBody1, u"Choose the adapter to configure."},
    {kStrHelpBody2, u"Tick the drives to use and give each a role."},
    {kStrCreated, u"Virtual disk created"},
    {kStrBlank, u" "},
};

const std::map<EFI_STRING_ID, std::u16string> kFrench = {
    {kStrAdapterTitle, u"Démo - Choisir l'adaptateur"},
    {kStrVolumeTitle, u"Démo - Créer un disque virtuel"},
    {kStrDriveCount, u"Disques : %d"},
    {kStrAdvanced, u"Afficher les réglages avancés"},
    {kStrDelete, u"Supprimer"},
    {kStrNext, u"Suivant"},
    {kStrBack, u"Retour"},
    {kStrFast, u"Rapide"},
    {kStrSafe, u"Sûr"},
    {kStrMember, u"Membre"},
    {kStrHelpHeading, u"Choix de l'adaptateur"},
};

// ---- Helpers the wizard has too -----------------------------------------------

HOST_PAGE_NODE *Node(HOST_PAGE_NODE *Page, UINT32 Id) {
  HOST_PAGE_NODE *Found = nullptr;
  gSetup->FindNode(Page, Id, &Found);
  return Found;
}

VOID SetState(HOST_PAGE_NODE *Page, UINT32 Id, UINT8 DisplayState) {
  HOST_PAGE_NODE *Target = Node(Page, Id);
  Target->Control->DisplayState = DisplayState;
  Target->RefreshMark = HOST_REFRESH_STATE;
}

// "Set text": a new id, the cached text dropped, shown, redrawn at once.
VOID SetText(HOST_PAGE_NODE *Page, UINT32 Id, EFI_STRING_ID TextId) {
  HOST_PAGE_NODE *Target = Node(Page, Id);
  Target->Control->TextId = TextId;
  Target->Control->CachedText = nullptr;
  Target->Control->DisplayState = HOST_DISPLAY_SHOWN;
  Target->RefreshMark = HOST_REFRESH_TEXT;
  gSetup->RedrawControl(Target);
}

VOID MarkForReRead(HOST_PAGE_NODE *Node) {
  if (Node == nullptr) {
    return;
  }
  Node->RefreshMark |= HOST_REFRESH_TEXT;
  for (HOST_PAGE_NODE *Child = Node->FirstChild; Child != nullptr;
       Child = Child->NextSibling) {
    MarkForReRead(Child);
  }
}

std::u16string Format(EFI_STRING_ID Id, UINT64 Number) {
  std::u16string Text = gSetup->GetString(nullptr, Id) != nullptr
                            ? gSetup->GetString(nullptr, Id)
                            : u"";
  size_t At = Text.find(u"%d");
  std::string Digits = std::to_string(Number);
  std::u16string Wide(Digits.begin(), Digits.end());
  if (At != std::u16string::npos) {
    Text.replace(At, 2, Wide);
  } else {
    Text += u" " + Wide;
  }
  return Text;
}

void Note(const std::string &Event) { gState.Events.push_back(Event); }

// ---- Callbacks --------------------------------------------------------------

EFI_STATUS EFIAPI AdapterChanged(HOST_PAGE_NODE *, const HOST_CONTROL_EVENT *Event) {
  Note("change 101 " + std::to_string(Event->Value));
  // The second adapter has no drives to remove.
  SetState(gAdapterPage, kDeleteButton,
           gState.Adapter == 1 ? HOST_DISPLAY_GRAYED : HOST_DISPLAY_SHOWN);
  Node(gAdapterPage, kDriveLabel)->RefreshMark = HOST_REFRESH_TEXT;
  return gSetup->ShowPage(gAdapterPage, 0);
}

EFI_STATUS EFIAPI AdvancedTicked(HOST_PAGE_NODE *, const HOST_CONTROL_EVENT *Event) {
  Note("change 103 " + std::to_string(Event->Value));
  SetState(gAdapterPage, kAdvancedLabel,
           gState.Advanced ? HOST_DISPLAY_SHOWN : HOST_DISPLAY_HIDDEN);
  return gSetup->ShowPage(gAdapterPage, 0);
}

EFI_STATUS EFIAPI ModeChanged(HOST_PAGE_NODE *, const HOST_CONTROL_EVENT *Event) {
  Note("change 104 " + std::to_string(Event->Value));
  if (gState.Mode == 1) {
    SetText(gAdapterPage, kAdvancedLabel, kStrAdvancedOn);
  }
  return EFI_SUCCESS;
}

EFI_STATUS EFIAPI DeletePressed(HOST_PAGE_NODE *, const HOST_CONTROL_EVENT *) {
  Note("press 106");
  if (!gSetup->MessageBox(HOST_MSGBOX_YES_NO, kStrWarning, kStrDeleteQuestion,
                          nullptr)) {
    return gSetup->ShowPage(gAdapterPage, 0);
  }
  size_t Index = gState.SelectedRow - 1;
  if (Index < gState.Drives.size()) {
    gState.Drives.erase(gState.Drives.begin() + Index);
    gState.Ticked.erase(gState.Ticked.begin() + Index);
    gState.Roles.erase(gState.Roles.begin() + Index);
  }
  gState.SelectedRow = 1;
  Node(gAdapterPage, kDriveTable)->RefreshMark = HOST_REFRESH_TEXT;
  Node(gAdapterPage, kDriveLabel)->RefreshMark = HOST_REFRESH_TEXT;
  return gSetup->ShowPage(gAdapterPage, kDeleteButton);
}

EFI_STATUS EFIAPI TableChanged(HOST_PAGE_NODE *Table, const HOST_CONTROL_EVENT *Event) {
  Note((Event->Event == HOST_EVENT_ROW_SELECT ? "select " : "cell ") +
       std::to_string(Event->Row) + " " + std::to_string(Event->Column) + " " +
       std::to_string(Event->Value));
  Table->RefreshMark = HOST_REFRESH_TEXT;  // a ticked row's role opens
  return gSetup->RedrawControl(Table);
}

EFI_STATUS EFIAPI NextPressed(HOST_PAGE_NODE *, const HOST_CONTROL_EVENT *) {
  Note("press 108");
  return gSetup->ShowPage(gVolumePage, kNameEdit);
}

EFI_STATUS EFIAPI NameChanged(HOST_PAGE_NODE *, const HOST_CONTROL_EVENT *) {
  Note("change 201");
  SetState(gVolumePage, kCreateButton,
           gState.VolumeName.empty() ? HOST_DISPLAY_GRAYED : HOST_DISPLAY_SHOWN);
  return gSetup->ShowPage(gVolumePage, 0);
}

EFI_STATUS EFIAPI CapacityChanged(HOST_PAGE_NODE *, const HOST_CONTROL_EVENT *Event) {
  Note("change 202 " + std::to_string(Event->Value));
  Node(gVolumePage, kCapacityLabel)->RefreshMark = HOST_REFRESH_TEXT;
  return gSetup->RedrawControl(Node(gVolumePage, kCapacityLabel));
}

EFI_STATUS EFIAPI RefreshPressed(HOST_PAGE_NODE *, const HOST_CONTROL_EVENT *) {
  Note("press 204");
  gState.Refreshes++;
  gSetup->MessageBox(HOST_MSGBOX_PROGRESS, kStrBlank, kStrRefresh, nullptr);
  gSetup->SetProgress(40);
  gSetup->SetProgress(80);
  gSetup->SetProgress(100);
  return gSetup->RedrawScreen();
}

EFI_STATUS EFIAPI BackPressed(HOST_PAGE_NODE *, const HOST_CONTROL_EVENT *) {
  Note("press 208");
  return gSetup->ShowPage(gAdapterPage, kNextButton);
}

EFI_STATUS EFIAPI CreatePressed(HOST_PAGE_NODE *, const HOST_CONTROL_EVENT *) {
  Note("press 209");
  gSetup->MessageBox(HOST_MSGBOX_PLAIN, kStrResult, kStrCreated, nullptr);
  SetState(gVolumePage, kResultGroup, HOST_DISPLAY_SHOWN);
  return gSetup->ShowPage(gVolumePage, kBackButton);
}

VOID EFIAPI HelpRequested() {
  static constexpr HOST_HELP_ENTRY kEntries[] = {
      {kStrHelpHeading, HOST_HELP_HEADING},
      {kStrHelpBody1, HOST_HELP_PARAGRAPH},
      {kStrHelpBody2, HOST_HELP_PARAGRAPH}};
  gSetup->ShowHelp(gAdapterPage, kEntries, 3);
}

VOID EFIAPI LanguageChanged() {
  gState.LanguageCallbacks++;
  MarkForReRead(gAdapterPage);
  MarkForReRead(gVolumePage);
}

VOID EFIAPI ReturnedToModule() {
  gState.ReturnCallbacks++;
  gSetup->ShowPage(gAdapterPage, 0);
}

// ---- Data source ------------------------------------------------------------

std::u16string gDriveText;
std::u16string gCapacityText;
std::vector<HOST_OPTION> gAdapterOptions;
HOST_OPTION gModeOptions[] = {{0, nullptr, kStrFast, HOST_DISPLAY_SHOWN},
                              {1, nullptr, kStrSafe, HOST_DISPLAY_SHOWN}};
HOST_OPTION gRoleOptions[] = {{0, nullptr, kStrMember, HOST_DISPLAY_SHOWN},
                              {1, nullptr, kStrSpare, HOST_DISPLAY_SHOWN}};
std::vector<HOST_TABLE_CELL> gCells;

EFI_STATUS EFIAPI GetValue(HOST_PAGE_NODE *Node, VOID *Value) {
  auto *Out = static_cast<HOST_CONTROL_VALUE *>(Value);
  switch (Node->NodeId) {
    case kAdapterRadio:
      Out->Number = gState.Adapter;
      return EFI_SUCCESS;
    case kDriveLabel:
      gDriveText = Format(kStrDriveCount, gState.Adapter == 1 ? 0 : gState.Drives.size());
      Out->Text = gDriveText.c_str();
      return EFI_SUCCESS;
    case kAdvancedCheck:
      Out->Number = gState.Advanced;
      return EFI_SUCCESS;
    case kDriveTable:
      Out->Number = gState.SelectedRow;
      return EFI_SUCCESS;
    case kNameEdit:
      Out->Text = gState.VolumeName.c_str();
      return EFI_SUCCESS;
    case kCapacitySlider:
      Out->Number = gState.Capacity;
      Out->Minimum = 0;
      Out->Maximum = 500;
      return EFI_SUCCESS;
    case kCapacityLabel:
      gCapacityText = Format(kStrCapacity, gState.Capacity) + u" GB";
      Out->Text = gCapacityText.c_str();
      return EFI_SUCCESS;
    default:
      return EFI_NOT_FOUND;
  }
}

EFI_STATUS EFIAPI SetValue(HOST_PAGE_NODE *Node, VOID *Value) {
  auto *In = static_cast<HOST_CONTROL_VALUE *>(Value);
  switch (Node->NodeId) {
    case kAdapterRadio:
      gState.Adapter = static_cast<UINT32>(In->Number);
      return EFI_SUCCESS;
    case kAdvancedCheck:
      gState.Advanced = In->Number != 0;
      return EFI_SUCCESS;
    case kModeCombo:
      gState.Mode = static_cast<UINT32>(In->Number);
      return EFI_SUCCESS;
    case kDriveTable:
      gState.SelectedRow = static_cast<UINT32>(In->Number);
      return EFI_SUCCESS;
    case kNameEdit:
      if (gState.RefuseNames) {
        return EFI_ACCESS_DENIED;
      }
      gState.VolumeName = In->Text != nullptr ? In->Text : u"";
      return EFI_SUCCESS;
    case kCapacitySlider:
      gState.Capacity = In->Number;
      return EFI_SUCCESS;
    default:
      return EFI_NOT_FOUND;
  }
}

EFI_STATUS EFIAPI GetOptions(HOST_PAGE_NODE *Node, VOID *Value) {
  auto *List = static_cast<HOST_OPTION_LIST *>(Value);
  if (Node->NodeId == kAdapterRadio) {
    static const CHAR16 *kNames[] = {u"Adapter A     PCI slot 1",
                                     u"Adapter B     PCI slot 2",
                                     u"Adapter C     (not supported)"};
    gAdapterOptions.clear();
    for (UINT32 Index = 0; Index < 3; Index++) {
      gAdapterOptions.push_back({Index, const_cast<CHAR16 *>(kNames[Index]), 0,
                                 static_cast<UINT8>(Index == 2 ? HOST_DISPLAY_GRAYED
                                                               : HOST_DISPLAY_SHOWN)});
    }
    *List = {3, gAdapterOptions.data()};
    return EFI_SUCCESS;
  }
  if (Node->NodeId == kModeCombo) {
    *List = {2, gModeOptions};
    return EFI_SUCCESS;
  }
  return EFI_NOT_FOUND;
}

EFI_STATUS EFIAPI GetTable(HOST_PAGE_NODE *Node, VOID *Value) {
  if (Node->NodeId != kDriveTable) {
    return EFI_NOT_FOUND;
  }
  auto *Table = static_cast<HOST_TABLE *>(Value);
  gCells.clear();
  gCells.push_back({HOST_CELL_TEXT, HOST_DISPLAY_SHOWN, 0, u"", 0, {}});
  gCells.push_back({HOST_CELL_TEXT, HOST_DISPLAY_SHOWN, 0, u"Drive", 0, {}});
  gCells.push_back({HOST_CELL_TEXT, HOST_DISPLAY_SHOWN, kStrState, nullptr, 0, {}});
  gCells.push_back({HOST_CELL_TEXT, HOST_DISPLAY_SHOWN, kStrRole, nullptr, 0, {}});
  for (size_t Row = 0; Row < gState.Drives.size(); Row++) {
    // The last drive is in use elsewhere: its check box is grayed. A role
    // can be chosen once the drive is ticked.
    UINT8 CheckState = Row == 3 ? HOST_DISPLAY_GRAYED : HOST_DISPLAY_SHOWN;
    UINT8 RoleState = gState.Ticked[Row] != 0 ? HOST_DISPLAY_SHOWN : HOST_DISPLAY_GRAYED;
    gCells.push_back({HOST_CELL_TEXT, HOST_DISPLAY_SHOWN, 0, u"", 0, {}});
    gCells.push_back({HOST_CELL_TEXT, HOST_DISPLAY_SHOWN, 0,
                      gState.Drives[Row].c_str(), 0, {}});
    gCells.push_back({HOST_CELL_CHECK_BOX, CheckState, 0, nullptr,
                      gState.Ticked[Row], {}});
    gCells.push_back({HOST_CELL_COMBO_BOX, RoleState, 0, nullptr,
                      gState.Roles[Row], {2, gRoleOptions}});
  }
  *Table = {static_cast<UINT32>(gState.Drives.size() + 1), 4,
            HOST_TABLE_HEADING | HOST_TABLE_SELECTABLE, nullptr, gCells.data()};
  return EFI_SUCCESS;
}

EFI_STATUS EFIAPI SetTableCell(HOST_PAGE_NODE *Node, VOID *Value) {
  auto *Change = static_cast<HOST_TABLE_CELL_CHANGE *>(Value);
  if (Node->NodeId != kDriveTable || Change->Row == 0 ||
      Change->Row > gState.Drives.size()) {
    return EFI_NOT_FOUND;
  }
  size_t Index = Change->Row - 1;
  if (Change->Column == 2) {
    gState.Ticked[Index] = Change->Value;
  } else if (Change->Column == 3) {
    gState.Roles[Index] = Change->Value;
  }
  return EFI_SUCCESS;
}

RAID_SETUP_DATA_SOURCE_PROTOCOL gDataSource = {
    RAID_SETUP_DATA_SOURCE_GUID, 0, GetValue, SetValue, GetOptions, GetTable,
    SetTableCell};

constexpr HOST_CONTROL_DESCRIPTOR kCommon[] = {{kNextButton, NextPressed},
                                               {kBackButton, BackPressed}};
constexpr HOST_CONTROL_DESCRIPTOR kAdapterOwn[] = {
    {kAdapterRadio, AdapterChanged}, {kAdvancedCheck, AdvancedTicked},
    {kModeCombo, ModeChanged},       {kDeleteButton, DeletePressed},
    {kDriveTable, TableChanged}};
constexpr HOST_CONTROL_DESCRIPTOR kVolumeOwn[] = {
    {kNameEdit, NameChanged},       {kCapacitySlider, CapacityChanged},
    {kRefreshButton, RefreshPressed}, {kCreateButton, CreatePressed}};

}  // namespace

State &Current() { return gState; }

const CHAR16 *DemoString(const std::string &Language, EFI_STRING_ID Id) {
  if (Language == "fr-FR") {
    auto It = kFrench.find(Id);
    if (It != kFrench.end()) {
      return It->second.c_str();
    }
  }
  auto It = kEnglish.find(Id);
  return It != kEnglish.end() ? It->second.c_str() : nullptr;
}

RAID_SETUP_DATA_SOURCE_PROTOCOL *DataSource() { return &gDataSource; }

EFI_STATUS Start(TARN_SETUP_PROTOCOL *Setup) {
  gSetup = Setup;
  gState = State();
  HOST_PAGE_NODE *Root = nullptr;
  EFI_GUID *Identity = nullptr;
  Setup->GetModuleRoot(&Root);
  Setup->GetModuleIdentity(&Identity);
  EFI_STATUS Status =
      Setup->InstantiatePage(&kAdapterTemplate, Root, Identity, &gAdapterPage);
  if (EFI_ERROR(Status)) {
    return Status;
  }
  Status = Setup->InstantiatePage(&kVolumeTemplate, Root, Identity, &gVolumePage);
  if (EFI_ERROR(Status)) {
    return Status;
  }
  Setup->RegisterModuleCallbacks(ReturnedToModule, HelpRequested, LanguageChanged);
  Setup->BuildControlTable(gAdapterPage, kCommon, 2, kAdapterOwn, 5);
  Setup->BuildControlTable(gVolumePage, kCommon, 2, kVolumeOwn, 4);
  return Setup->ShowPage(gAdapterPage, kAdapterRadio);
}

VOID Stop() {
  if (gAdapterPage != nullptr) {
    gSetup->FreePageNode(gAdapterPage);
  }
  if (gVolumePage != nullptr) {
    gSetup->FreePageNode(gVolumePage);
  }
  gAdapterPage = nullptr;
  gVolumePage = nullptr;
}

HOST_PAGE_NODE *AdapterPage() { return gAdapterPage; }
HOST_PAGE_NODE *VolumePage() { return gVolumePage; }
const HOST_PAGE_TEMPLATE &AdapterTemplate() { return kAdapterTemplate; }
const HOST_PAGE_TEMPLATE &VolumeTemplate() { return kVolumeTemplate; }

}  // namespace demo
