/* tqvspool: the gateway file converter of a fax server.
 *
 * The fax service (the host) loads the library and drives it through the ten functions below, one
 * call at a time. Job and receive records are the host's buffers; this header gives their sizes and
 * every field offset, so a host needs nothing else. Integers in the records are 32-bit little-endian;
 * text fields are NUL-terminated inside their field. */
#ifndef TQVSPOOL_H
#define TQVSPOOL_H

#include <stdint.h>

/* On Windows the names and ordinals are exported by the library's module-definition file, and the
 * functions use the WINAPI (__stdcall) convention; elsewhere the convention is the platform's own. */
#if defined(_WIN32)
#if defined(TQVSPOOL_BUILDING)
#define TQVSPOOL_API
#else
#define TQVSPOOL_API __declspec(dllimport)
#endif
#define TQVSPOOL_CALL __stdcall
#else
#define TQVSPOOL_API __attribute__((visibility("default")))
#define TQVSPOOL_CALL
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* Start-up: 0 = ready, -1 = cannot run (the reason is in the log file and the event log). */
TQVSPOOL_API int TQVSPOOL_CALL S_Initialise(int32_t textFileFlag, const char *textFileDir);
/* Always 0. */
TQVSPOOL_API int TQVSPOOL_CALL S_Shutdown(void);
/* Sets *count to the number of users allowed to send faxes; 0. */
TQVSPOOL_API int TQVSPOOL_CALL S_GetNumUsers(uint32_t *count);
/* Stores the job record as a new job file: 0, or -1 when the file cannot be created. */
TQVSPOOL_API int TQVSPOOL_CALL S_FaxPending(void *job);
/* A "KVDTQVOUT" job is finished: report, log, clean up. 0. */
TQVSPOOL_API int TQVSPOOL_CALL S_FaxSent(void *job);
/* Names the file for a received fax in FaxFile. 0. */
TQVSPOOL_API int TQVSPOOL_CALL S_CreateReceiveFaxFile(void *receive);
/* Routes and delivers a received fax. 0. */
TQVSPOOL_API int TQVSPOOL_CALL S_FaxReceived(void *receive);
/* 1 = a job was placed in the record, 0 = none. */
TQVSPOOL_API int TQVSPOOL_CALL S_Scan(int32_t dueJobsFlag, void *job);
/* The host has taken the job: nonzero when its job file was deleted, else 0. */
TQVSPOOL_API int TQVSPOOL_CALL S_ScannedEventAccepted(void *job);
/* A "JFXTQVOUT" job is back: mailed to the JFAX service (or reported). 0. */
TQVSPOOL_API int TQVSPOOL_CALL S_JfaxReady(void *job);

/* Job record: exactly TQV_JOB_RECORD_SIZE bytes; also the whole content of a job file. */
#define TQV_JOB_RECORD_SIZE 8267
#define TQV_JOB_TAG_FAX "KVDTQVOUT"  /* 9 bytes, no terminator */
#define TQV_JOB_TAG_JFAX "JFXTQVOUT" /* 9 bytes, no terminator */

/* Offset and size of every job-record field, in record order. */
#define TQV_JOB_TAG 0                   /* 9 */
#define TQV_JOB_RECORD_SIZE_FIELD 9     /* uint32, always 8267 */
#define TQV_JOB_SCHEDULED_TIME 13       /* int32, seconds since 1970 UTC; 0 = at once */
#define TQV_JOB_SKIP_QUEUE 17           /* uint32 */
#define TQV_JOB_JOB_FILE 21             /* 261 */
#define TQV_JOB_RESERVED_TEXT 282       /* 256 */
#define TQV_JOB_SUBJECT 538             /* 256 */
#define TQV_JOB_BILLING_CODE 794        /* 48 */
#define TQV_JOB_SENDER_NAME 842         /* 96 */
#define TQV_JOB_SENDER_EMAIL 938        /* 96 */
#define TQV_JOB_RECIPIENT_NAME 1034     /* 96 */
#define TQV_JOB_RECIPIENT_NUMBER 1130   /* 96 */
#define TQV_JOB_FAX_NUMBER 1226         /* 96 */
#define TQV_JOB_FAX_HEADER 1322         /* 48 */
#define TQV_JOB_REMOTE_ID 1370          /* 96, host */
#define TQV_JOB_COVER_PAGE_FILE 1466    /* 261 */
#define TQV_JOB_TEMPLATE_FILE 1727      /* 261 */
#define TQV_JOB_MESSAGE_TEXT_FILE 1988  /* 261 */
#define TQV_JOB_SENDER_PARTY 2249       /* 336, party block */
#define TQV_JOB_RECIPIENT_PARTY 2585    /* 336, party block */
#define TQV_JOB_TEXT_TEMPLATE_FILE 2921 /* 251 */
#define TQV_JOB_RESERVED_1 3172         /* 10 */
#define TQV_JOB_STATUS 3182             /* uint32, host; 2 = delivered, 6 = refused */
#define TQV_JOB_STATUS_INFO 3186        /* 256, host */
#define TQV_JOB_TOTAL_PAGES 3442        /* uint32, host */
#define TQV_JOB_SPEED_CODE 3446         /* int32, host: 0..5 = 2400..14400 bit/s */
#define TQV_JOB_NUM_RETRIES 3450        /* uint32, host */
#define TQV_JOB_CALL_DURATION 3454      /* int32, host, seconds */
#define TQV_JOB_PAGES_TRANSFERRED 3458  /* uint32, host */
#define TQV_JOB_FINE_RESOLUTION 3462    /* uint32 */
#define TQV_JOB_RESERVED_2 3466         /* 48 */
#define TQV_JOB_PORT 3514               /* 52, host */
#define TQV_JOB_FILE_COUNT 3566         /* int32, 0..16 */
#define TQV_JOB_FILES 3570              /* 16 paths of TQV_PATH_FIELD_SIZE bytes */
#define TQV_JOB_ARCHIVE_SENT 7746       /* uint32, host */
#define TQV_JOB_ARCHIVE_DIR 7750        /* 261, host */
#define TQV_JOB_CUSTOM_STRING 8011      /* 256 */

#define TQV_PATH_FIELD_SIZE 261
#define TQV_JOB_MAX_FILES 16

/* Party block: seven text fields of TQV_PARTY_FIELD_SIZE bytes each. */
#define TQV_PARTY_BLOCK_SIZE 336
#define TQV_PARTY_FIELD_SIZE 48
#define TQV_PARTY_FIRST_NAME 0
#define TQV_PARTY_LAST_NAME 48
#define TQV_PARTY_COMPANY 96
#define TQV_PARTY_DEPARTMENT 144
#define TQV_PARTY_FAX_NO 192
#define TQV_PARTY_VOICE 240
#define TQV_PARTY_EMAIL 288

/* Receive record: laid out by the host; the library touches only these fields, nothing at or
 * beyond TQV_RECEIVE_TOUCHED_SIZE. */
#define TQV_RECEIVE_TOUCHED_SIZE 1308
#define TQV_RECEIVE_REMOTE_ID 13         /* 96 */
#define TQV_RECEIVE_RESULT 109           /* uint32, 4 = received */
#define TQV_RECEIVE_INFO 113             /* 256 */
#define TQV_RECEIVE_SPEED_CODE 369       /* int32 */
#define TQV_RECEIVE_CALL_DURATION 373    /* int32, seconds */
#define TQV_RECEIVE_PAGES_RECEIVED 377   /* uint32 */
#define TQV_RECEIVE_FINE_RESOLUTION 381  /* uint32 */
#define TQV_RECEIVE_PORT 433             /* 52 */
#define TQV_RECEIVE_DTMF_DIGITS 485      /* 24 */
#define TQV_RECEIVE_OCR_AVAILABLE 509    /* uint32 */
#define TQV_RECEIVE_ARCHIVE_RECEIVED 517 /* uint32 */
#define TQV_RECEIVE_ARCHIVE_DIR 521      /* 261 */
#define TQV_RECEIVE_ATTACH_OCR_TEXT 782  /* uint32 */
#define TQV_RECEIVE_FAX_FILE 786         /* 261 */
#define TQV_RECEIVE_OCR_TEXT_FILE 1047   /* 261 */

#ifdef __cplusplus
}
#endif

#endif /* TQVSPOOL_H */
