// Received faxes from the host: naming the file the host stores a fax in, and taking the fax over.
// Once taken over, the image and its recognised text are deleted whatever delivery made of them;
// the fax lives on as the message attachment and, when asked for, the archive copy.
#include "common/receive_record.h"
#include "common/unique_name.h"
#include "config/service_state.h"
#include "host/entry_points.h"
#include "host/job_documents.h"
#include "incoming/received_fax_delivery.h"
#include "incoming/recipient_list.h"
#include "reports/receive_log.h"

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
  ReceiveRecordView receive(receiveBuffer);
  RecipientList routedTo;
  DeliverReceivedFax(receive, routedTo);
  AppendReceiveLog(receive, routedTo);
  DeleteIfPresent(receive.Text(receive::FaxFile));
  DeleteIfPresent(receive.Text(receive::OcrTextFile));
  return 0;
}

}  // namespace tqv::host
