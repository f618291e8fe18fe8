// Received-fax delivery; see received_fax_delivery.h. Write errors on the message are not
// detected; a missing fax image leaves a message with the report alone.
#include "incoming/received_fax_delivery.h"

#include <optional>
#include <string>

#include "common/path_helpers.h"
#include "config/message_strings.h"
#include "gateway/message_writer.h"
#include "incoming/inbound_routing.h"
#include "platform/clock.h"
#include "reports/report_layout.h"

namespace tqv {

void DeliverReceivedFax(ReceiveRecordView receive, RecipientList &list) {
  MessageWriter writer;
  if (!writer.Create(GatewayDirection::In)) return;
  // Routing sees the identifier as the fax service gave it.
  Route(receive, list);
  if (receive.Text(receive::RemoteId).empty())
    receive.SetText(receive::RemoteId, LookupString(kUnknownStationText, kUnknownStationRoom));
  const std::string station = receive.Text(receive::RemoteId);
  writer.SetSender(station);
  bool addressed = false;
  for (std::optional<std::string> user = list.First(); user; user = list.Next())
    addressed = writer.AddRecipient(*user) || addressed;

  const std::uint32_t result = receive.Number(receive::Result);
  writer.SetSubject(
      LookupString(result == kResultReceived ? kReceivedSubjectText : kFailedReceptionSubjectText,
                   kSubjectPrefixRoom) +
      " " + GetString(kFaxFromText) + station);
  writer.SetFaxStatus(static_cast<std::int32_t>(result));
  writer.SetStatusInfo(receive.Text(receive::Info));
  writer.SetNumRetries(0);
  writer.SetCallDuration(receive.Number(receive::CallDuration));
  writer.SetPagesTransferred(static_cast<std::int32_t>(receive.Number(receive::PagesReceived)));
  writer.SetDeliveryTime(static_cast<std::int32_t>(platform::CurrentTime()));
  writer.AddBody(FormatReceivedReport(receive));

  writer.AddAttachment(receive.Text(receive::FaxFile));
  // Nobody to read it: the recognised text goes only with a fax that reached a user.
  const std::string textFile = receive.Text(receive::OcrTextFile);
  if (receive.Number(receive::AttachOcrText) != 0 && addressed && !textFile.empty() && FileExists(textFile))
    writer.AddAttachment(textFile);
  writer.Close();
}

}  // namespace tqv
