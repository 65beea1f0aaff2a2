#include "system_reason.h"

#include <cerrno>
#include <system_error>

namespace pxrom_command {

std::string ReasonOf(int error, const std::string& what) {
  switch (error) {
    case ENOENT:
      return "there is no such file or folder";
    case EACCES:
    case EPERM:
      return "you have no permission to " + what;
    case EISDIR:
      return "it is a folder";
    case ENOTDIR:
      return "a part of its path is a file, not a folder";
    case ELOOP:
      return "its symbolic links form a circle";
    case ENAMETOOLONG:
      return "its name is too long";
    case EIO:
      return "the device failed";
    case ENOSPC:
#ifdef EDQUOT
    case EDQUOT:
#endif
      return "the disk is full";
    case EFBIG:
      return "the file would be larger than the system allows";
    case EROFS:
      return "the disk can only be read";
    case EPIPE:
      return "its reader has closed it";
    case EBADF:
      return "it is not open";
    case EBUSY:
      return "another program uses it";
    case EMFILE:
    case ENFILE:
      return "too many files are open";
    default:
      break;
  }
  return "the system refuses to " + what + " (" +
         (error == 0 ? "without a reason" : std::generic_category().message(error)) + ')';
}

}  // namespace pxrom_command
