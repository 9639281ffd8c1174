// Handle database semantics as the boot services expose them.
#include <Library/MemoryAllocationLib.h>

#include "EmuTestSupport.h"

namespace emu_test {
namespace {

EFI_GUID kGuidA = {0x11111111, 0x1111, 0x1111, {1, 1, 1, 1, 1, 1, 1, 1}};
EFI_GUID kGuidB = {0x22222222, 0x2222, 0x2222, {2, 2, 2, 2, 2, 2, 2, 2}};
EFI_GUID kGuidC = {0x33333333, 0x3333, 0x3333, {3, 3, 3, 3, 3, 3, 3, 3}};

class HandleDatabaseTest : public EmuTest {
 protected:
  int InterfaceA = 0, InterfaceB = 0, InterfaceC = 0;
};

TEST_F(HandleDatabaseTest, InstallMultipleMakesOneHandleWithAll) {
  EFI_HANDLE Handle = nullptr;
  ASSERT_EQ(EFI_SUCCESS, gBS->InstallMultipleProtocolInterfaces(
                             &Handle, &kGuidA, &InterfaceA, &kGuidB,
                             &InterfaceB, nullptr));
  ASSERT_NE(nullptr, Handle);
  VOID *Found = nullptr;
  EXPECT_EQ(EFI_SUCCESS, gBS->HandleProtocol(Handle, &kGuidA, &Found));
  EXPECT_EQ(&InterfaceA, Found);
  EXPECT_EQ(EFI_SUCCESS, gBS->HandleProtocol(Handle, &kGuidB, &Found));
  EXPECT_EQ(&InterfaceB, Found);
  EXPECT_EQ(EFI_UNSUPPORTED, gBS->HandleProtocol(Handle, &kGuidC, &Found));
  EXPECT_EQ(nullptr, Found);
}

TEST_F(HandleDatabaseTest, InstallMultipleIsAllOrNothingOnExistingHandle) {
  EFI_HANDLE Handle = nullptr;
  ASSERT_EQ(EFI_SUCCESS, gBS->InstallProtocolInterface(
                             &Handle, &kGuidB, EFI_NATIVE_INTERFACE,
                             &InterfaceB));
  // C would go on, then B collides: neither may stay.
  EFI_HANDLE Same = Handle;
  EXPECT_EQ(EFI_INVALID_PARAMETER,
            gBS->InstallMultipleProtocolInterfaces(&Same, &kGuidC, &InterfaceC,
                                                   &kGuidB, &InterfaceA,
                                                   nullptr));
  EXPECT_EQ(Handle, Same);
  VOID *Found = nullptr;
  EXPECT_EQ(EFI_UNSUPPORTED, gBS->HandleProtocol(Handle, &kGuidC, &Found));
  EXPECT_EQ(EFI_SUCCESS, gBS->HandleProtocol(Handle, &kGuidB, &Found));
  EXPECT_EQ(&InterfaceB, Found);
}

TEST_F(HandleDatabaseTest, FailedInstallMultipleOnNewHandleLeavesNoHandle) {
  EFI_HANDLE Handle = nullptr;
  EXPECT_EQ(EFI_INVALID_PARAMETER,
            gBS->InstallMultipleProtocolInterfaces(&Handle, &kGuidA,
                                                   &InterfaceA, &kGuidA,
                                                   &InterfaceB, nullptr));
  EXPECT_EQ(nullptr, Handle);
  EXPECT_TRUE(Fw().Handles().AllHandles().empty());
}

TEST_F(HandleDatabaseTest, UninstallMultipleIsAllOrNothing) {
  EFI_HANDLE Handle = nullptr;
  ASSERT_EQ(EFI_SUCCESS, gBS->InstallMultipleProtocolInterfaces(
                             &Handle, &kGuidA, &InterfaceA, &kGuidB,
                             &InterfaceB, nullptr));
  // B is on the handle with another interface: nothing is removed.
  EXPECT_EQ(EFI_INVALID_PARAMETER,
            gBS->UninstallMultipleProtocolInterfaces(
                Handle, &kGuidA, &InterfaceA, &kGuidB, &InterfaceC, nullptr));
  VOID *Found = nullptr;
  EXPECT_EQ(EFI_SUCCESS, gBS->HandleProtocol(Handle, &kGuidA, &Found));
  EXPECT_EQ(&InterfaceA, Found);

  EXPECT_EQ(EFI_SUCCESS, gBS->UninstallMultipleProtocolInterfaces(
                             Handle, &kGuidA, &InterfaceA, &kGuidB,
                             &InterfaceB, nullptr));
  // A handle without protocols is gone.
  EXPECT_FALSE(Fw().Handles().IsValid(Handle));
  EXPECT_EQ(EFI_INVALID_PARAMETER,
            gBS->HandleProtocol(Handle, &kGuidA, &Found));
}

TEST_F(HandleDatabaseTest, UninstallNeedsTheInstalledInterface) {
  EFI_HANDLE Handle = nullptr;
  gBS->InstallProtocolInterface(&Handle, &kGuidA, EFI_NATIVE_INTERFACE,
                                &InterfaceA);
  EXPECT_EQ(EFI_NOT_FOUND,
            gBS->UninstallProtocolInterface(Handle, &kGuidA, &InterfaceB));
  EXPECT_EQ(EFI_SUCCESS,
            gBS->ReinstallProtocolInterface(Handle, &kGuidA, &InterfaceA,
                                            &InterfaceB));
  EXPECT_EQ(EFI_NOT_FOUND,
            gBS->UninstallProtocolInterface(Handle, &kGuidA, &InterfaceA));
  EXPECT_EQ(EFI_SUCCESS,
            gBS->UninstallProtocolInterface(Handle, &kGuidA, &InterfaceB));
}

TEST_F(HandleDatabaseTest, LocateFindsHandlesInCreationOrder) {
  EFI_HANDLE First = nullptr, Second = nullptr, Third = nullptr;
  gBS->InstallProtocolInterface(&First, &kGuidA, EFI_NATIVE_INTERFACE,
                                &InterfaceA);
  gBS->InstallProtocolInterface(&Second, &kGuidB, EFI_NATIVE_INTERFACE,
                                &InterfaceB);
  gBS->InstallProtocolInterface(&Third, &kGuidA, EFI_NATIVE_INTERFACE,
                                &InterfaceC);

  VOID *Found = nullptr;
  EXPECT_EQ(EFI_SUCCESS, gBS->LocateProtocol(&kGuidA, nullptr, &Found));
  EXPECT_EQ(&InterfaceA, Found);
  EXPECT_EQ(EFI_NOT_FOUND, gBS->LocateProtocol(&kGuidC, nullptr, &Found));

  UINTN Count = 0;
  EFI_HANDLE *Buffer = nullptr;
  ASSERT_EQ(EFI_SUCCESS,
            gBS->LocateHandleBuffer(ByProtocol, &kGuidA, nullptr, &Count,
                                    &Buffer));
  ASSERT_EQ(2u, Count);
  EXPECT_EQ(First, Buffer[0]);
  EXPECT_EQ(Third, Buffer[1]);
  FreePool(Buffer);
  ASSERT_EQ(EFI_SUCCESS, gBS->LocateHandleBuffer(AllHandles, nullptr, nullptr,
                                                 &Count, &Buffer));
  EXPECT_EQ(3u, Count);
  FreePool(Buffer);
  EXPECT_EQ("", Fw().Memory().LeakReport());
  EXPECT_TRUE(Fw().Memory().Events().empty());
}

TEST_F(HandleDatabaseTest, LocateHandleBufferFailures) {
  UINTN Count = 7;
  EFI_HANDLE *Buffer = nullptr;
  EXPECT_EQ(EFI_NOT_FOUND, gBS->LocateHandleBuffer(ByProtocol, &kGuidA,
                                                   nullptr, &Count, &Buffer));
  EXPECT_EQ(0u, Count);
  EXPECT_EQ(nullptr, Buffer);

  EFI_HANDLE Handle = nullptr;
  gBS->InstallProtocolInterface(&Handle, &kGuidA, EFI_NATIVE_INTERFACE,
                                &InterfaceA);
  Fw().Memory().FailNthAllocation(1);
  EXPECT_EQ(EFI_OUT_OF_RESOURCES,
            gBS->LocateHandleBuffer(ByProtocol, &kGuidA, nullptr, &Count,
                                    &Buffer));
  EXPECT_EQ(nullptr, Buffer);
  EXPECT_EQ(EFI_INVALID_PARAMETER,
            gBS->LocateHandleBuffer(ByRegisterNotify, &kGuidA, nullptr, &Count,
                                    &Buffer));
}

TEST_F(HandleDatabaseTest, LocateHandleReportsTheSizeItNeeds) {
  EFI_HANDLE One = nullptr, Two = nullptr;
  gBS->InstallProtocolInterface(&One, &kGuidA, EFI_NATIVE_INTERFACE,
                                &InterfaceA);
  gBS->InstallProtocolInterface(&Two, &kGuidA, EFI_NATIVE_INTERFACE,
                                &InterfaceB);
  EFI_HANDLE Buffer[3] = {};
  UINTN Size = sizeof(EFI_HANDLE);
  EXPECT_EQ(EFI_BUFFER_TOO_SMALL,
            gBS->LocateHandle(ByProtocol, &kGuidA, nullptr, &Size, Buffer));
  EXPECT_EQ(2 * sizeof(EFI_HANDLE), Size);
  EXPECT_EQ(nullptr, Buffer[0]);
  Size = sizeof(Buffer);
  EXPECT_EQ(EFI_SUCCESS,
            gBS->LocateHandle(ByProtocol, &kGuidA, nullptr, &Size, Buffer));
  EXPECT_EQ(One, Buffer[0]);
  EXPECT_EQ(Two, Buffer[1]);
  EXPECT_EQ(nullptr, Buffer[2]);
}

TEST_F(HandleDatabaseTest, ProtocolsPerHandleInInstallationOrder) {
  EFI_HANDLE Handle = nullptr;
  gBS->InstallMultipleProtocolInterfaces(&Handle, &kGuidB, &InterfaceB,
                                         &kGuidA, &InterfaceA, nullptr);
  EFI_GUID **Guids = nullptr;
  UINTN Count = 0;
  ASSERT_EQ(EFI_SUCCESS, gBS->ProtocolsPerHandle(Handle, &Guids, &Count));
  ASSERT_EQ(2u, Count);
  EXPECT_TRUE(CompareGuid(*Guids[0], kGuidB));
  EXPECT_TRUE(CompareGuid(*Guids[1], kGuidA));
  FreePool(Guids);
  EXPECT_EQ("", Fw().Memory().LeakReport());
}

TEST_F(HandleDatabaseTest, OpenAndCloseProtocolKeepOpenRecords) {
  EFI_HANDLE Handle = nullptr, Agent = nullptr;
  gBS->InstallProtocolInterface(&Handle, &kGuidA, EFI_NATIVE_INTERFACE,
                                &InterfaceA);
  gBS->InstallProtocolInterface(&Agent, &kGuidB, EFI_NATIVE_INTERFACE,
                                &InterfaceB);
  VOID *Found = nullptr;
  EXPECT_EQ(EFI_SUCCESS,
            gBS->OpenProtocol(Handle, &kGuidA, &Found, Agent, nullptr,
                              EFI_OPEN_PROTOCOL_GET_PROTOCOL));
  EXPECT_EQ(&InterfaceA, Found);
  EXPECT_EQ(EFI_SUCCESS,
            gBS->OpenProtocol(Handle, &kGuidA, nullptr, Agent, nullptr,
                              EFI_OPEN_PROTOCOL_TEST_PROTOCOL));
  EXPECT_EQ(EFI_UNSUPPORTED,
            gBS->OpenProtocol(Handle, &kGuidC, &Found, Agent, nullptr,
                              EFI_OPEN_PROTOCOL_GET_PROTOCOL));
  EXPECT_EQ(nullptr, Found);
  EXPECT_EQ(EFI_INVALID_PARAMETER,
            gBS->OpenProtocol(Handle, &kGuidA, nullptr, Agent, nullptr,
                              EFI_OPEN_PROTOCOL_GET_PROTOCOL));

  EFI_OPEN_PROTOCOL_INFORMATION_ENTRY *Entries = nullptr;
  UINTN Count = 0;
  ASSERT_EQ(EFI_SUCCESS,
            gBS->OpenProtocolInformation(Handle, &kGuidA, &Entries, &Count));
  ASSERT_EQ(1u, Count);
  EXPECT_EQ(Agent, Entries[0].AgentHandle);
  EXPECT_EQ(EFI_OPEN_PROTOCOL_GET_PROTOCOL, Entries[0].Attributes);
  FreePool(Entries);

  EXPECT_EQ(EFI_SUCCESS, gBS->CloseProtocol(Handle, &kGuidA, Agent, nullptr));
  EXPECT_EQ(EFI_NOT_FOUND, gBS->CloseProtocol(Handle, &kGuidA, Agent, nullptr));
  EXPECT_EQ(EFI_INVALID_PARAMETER,
            gBS->CloseProtocol(Handle, &kGuidA, nullptr, nullptr));
}

}  // namespace
}  // namespace emu_test
