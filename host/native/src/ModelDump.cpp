// The RAID model as JSON, through the model's shared field lists.
#include "native/ModelDump.h"

#include <Library/PrintLib.h>

#include "model/RaidModelFields.h"

namespace host {

std::string StatusName(EFI_STATUS Status) {
  CHAR8 Buffer[64];
  AsciiSPrint(Buffer, sizeof(Buffer), "%r", Status);
  return Buffer;
}

ModelJson DumpModel(EFI_STATUS Status, UINT32 ErrorCode,
                    LIST_ENTRY &Controllers) {
  ModelJson Model = ModelJson::object();
  JsonFieldWriter<ModelJson> Out(Model);
  raid_model::ModelFields(Out, StatusName(Status).c_str(), ErrorCode,
                          &Controllers);
  return Model;
}

}  // namespace host
