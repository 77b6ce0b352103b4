#include "kernel/errno_status.h"

#include <errno.h>

namespace BPrivate {

status_t
status_of_errno(int error)
{
	switch (error) {
		case 0:
			return B_OK;
		case ENOMEM:
			return B_NO_MEMORY;
		case EIO:
			return B_IO_ERROR;
		case EACCES:
			return B_PERMISSION_DENIED;
		case EPERM:
			return B_NOT_ALLOWED;
		case EINVAL:
			return B_BAD_VALUE;
		case EFAULT:
			return B_BAD_ADDRESS;
		case ETIMEDOUT:
			return B_TIMED_OUT;
		case EINTR:
			return B_INTERRUPTED;
		case EAGAIN:
			return B_WOULD_BLOCK;
		case EBUSY:
			return B_BUSY;
		case EBADF:
			return B_FILE_ERROR;
		case EEXIST:
			return B_FILE_EXISTS;
		case ENOENT:
			return B_ENTRY_NOT_FOUND;
		case ENAMETOOLONG:
			return B_NAME_TOO_LONG;
		case ENOTDIR:
			return B_NOT_A_DIRECTORY;
		case ENOTEMPTY:
			return B_DIRECTORY_NOT_EMPTY;
		case ENOSPC:
		case EDQUOT:
			return B_DEVICE_FULL;
		case EROFS:
			return B_READ_ONLY_DEVICE;
		case EISDIR:
			return B_IS_A_DIRECTORY;
		case EMFILE:
		case ENFILE:
			return B_NO_MORE_FDS;
		case EXDEV:
			return B_CROSS_DEVICE_LINK;
		case ELOOP:
		case EMLINK:
			return B_LINK_LIMIT;
		case EPIPE:
			return B_BUSTED_PIPE;
		case ENODEV:
			return B_DEVICE_NOT_FOUND;
		case EFBIG:
			return B_FILE_TOO_LARGE;
		case E2BIG:
			return B_TOO_MANY_ARGS;
		case ERANGE:
			return B_RESULT_NOT_REPRESENTABLE;
		case EOVERFLOW:
			return B_BUFFER_OVERFLOW;
		case EOPNOTSUPP:
		case ENOSYS:
			return B_NOT_SUPPORTED;
		case ENOEXEC:
			return B_NOT_AN_EXECUTABLE;
		default:
			return B_ERROR;
	}
}

} // namespace BPrivate
