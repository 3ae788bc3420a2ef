// The text in front of an answer's body. Private to this folder.

#ifndef ORVEX_HTTP_ANSWER_H_
#define ORVEX_HTTP_ANSWER_H_

#include <string>

#include "http/Message.h"
#include "http/Refusal.h"

namespace http {

enum class Ending {
  KeepAlive,        // the rule of HTTP/1.1: nothing needs to be said
  SpokenKeepAlive,  // said for a client of HTTP/1.0
  Close,
};

// Replaces `head` by status line and header fields, with the empty line.
void writeHead(const Response& response, Ending ending, std::string& head);

// Empties a response as the handler gets it; keeps its memory.
void clear(Response& response);

// Makes a response of a refusal: its text as text/plain, and the end of the connection.
void setRefusal(const Refusal& refusal, Response& response);

}  // namespace http

#endif  // ORVEX_HTTP_ANSWER_H_
