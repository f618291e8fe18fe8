// Received faxes from the host: naming the file the host stores a fax in, and taking the fax over.
#include "common/receive_record.h"
#include "common/unique_name.h"
#include "config/service_state.h"
#include "host/entry_points.h"

namespace tqv::host {

int CreateReceiveFaxFile(void *receiveBuffer) {
  if (receiveBuffer == nullptr) return 0;
  // Only a name: the host creates the file.
  ReceiveRecordView(receiveBuffer)
      .SetText(receive::FaxFile, MakeUniqueName(CurrentService().tempInDirectory, "FAX"));
  return 0;
}

int FaxReceived(void *receiveBuffer) {
  if (receiveBuffer == nullptr) return 0;
  // Until received faxes can be routed and delivered, the image and its text stay where the host
  // stored them, so no fax is lost.
  return 0;
}

}  // namespace tqv::host
