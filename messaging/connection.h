// What the client needs to know of io_sockfd beyond its number: whether the number is still the connection's.
#pragma once

namespace apconf
{

// The descriptor to send on: io_sockfd, unless deinit_io_sock has closed it and the number is in use again. It then
// belongs to something else of this process, and -1 is given in its place.
int connection_fd();

// io_sockfd has just been opened for the connection, maybe under the number that it had before.
void connection_opened();

}  // namespace apconf
