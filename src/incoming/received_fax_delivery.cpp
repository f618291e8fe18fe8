// Received-fax delivery; see received_fax_delivery.h. A missing fax image leaves a message with
// the report alone; a fax that exists but does not reach its users whole is reported as an event,
// since the image is deleted after this call whatever happened.
#include "incoming/received_fax_delivery.h"

#include <optional>
#include <string>

#include "common/path_helpers.h"
#include "config/message_strings.h"
#include "diag/log_message.h"
#include "gateway/message_writer.h"
#include "incoming/inbound_routing.h"
#include "platform/clock.h"
#include "platform/event_log.h"
#include "reports/report_layout.h"

namespace tqv {

namespace {

void ReportUndelivered(const ReceiveRecordView &receive, RecipientList &users, const char *reason) {
  std::string names;
  for (std::optional<std::string> user = users.First(); user; user = users.Next())
    names += (names.empty() ? "" : ",") + *user;
  LogMessage(nullptr, kServiceEventSource, platform::kEventError,
             "Received fax '%s' from '%s' for '%s' could not be delivered: %s",
             receive.Text(receive::FaxFile).c_str(), receive.Text(receive::RemoteId).c_str(), names.c_str(),
             reason);
}

}  // namespace

void DeliverReceivedFax(ReceiveRecordView receive, RecipientList &list) {
  MessageWriter writer;
  if (!writer.Create(GatewayDirection::In)) {
    // Routed apart: the caller's list stays empty, as the receive log must show.
    RecipientList wanted;
    Route(receive, wanted);
    ReportUndelivered(receive, wanted, "no message file could be created");
    return;
  }
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

  const std::string image = receive.Text(receive::FaxFile);
  const bool imageAttached = writer.AddAttachment(image);
  // Nobody to read it: the recognised text goes only with a fax that reached a user.
  const std::string textFile = receive.Text(receive::OcrTextFile);
  if (receive.Number(receive::AttachOcrText) != 0 && addressed && !textFile.empty() && FileExists(textFile))
    writer.AddAttachment(textFile);
  if (!writer.Close())
    ReportUndelivered(receive, list, "the message could not be written whole");
  else if (!imageAttached && IsAttachable(image))
    ReportUndelivered(receive, list, "the fax image could not be read");
  else if (!addressed)
    ReportUndelivered(receive, list, "no user was routed to it");
}

}  // namespace tqv
