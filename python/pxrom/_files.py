"""Gets texts from what people have: paths, bytes, open files, with a reason if that fails; and writes
files as a whole or not at all."""

import contextlib
import errno
import gzip
import io
import os
import stat
import tempfile
import zlib
from typing import IO, Any, Iterator, Optional, Union

from ._wording import visible

Path = Union[str, "os.PathLike[str]"]
Content = Union[bytes, bytearray, memoryview, IO[bytes], IO[str]]

_GZIP = b"\x1f\x8b"
_MOST_UNPACKED = 2**30

_REASONS = {
    errno.ENOENT: "there is no such file or folder",
    errno.EACCES: "you have no permission to {}",
    errno.EPERM: "you have no permission to {}",
    errno.EISDIR: "it is a folder",
    errno.ENOTDIR: "a part of its path is a file, not a folder",
    errno.ELOOP: "its symbolic links form a circle",
    errno.ENAMETOOLONG: "its name is too long",
    errno.EIO: "the device failed",
    errno.ENOSPC: "the disk is full",
    errno.EFBIG: "the file would be larger than the system allows",
    errno.EROFS: "the disk can only be read",
}


def shown(path: Path) -> str:
    """A path as messages show it."""
    return visible(str(os.fspath(path)))


@contextlib.contextmanager
def _explained(what: str, path: Path) -> Iterator[None]:
    """Turns an OSError into one of the same class and number, with a sentence."""
    try:
        yield
    except OSError as error:
        reason = _REASONS.get(error.errno or 0, f"the system refuses to {{}} ({error.strerror})")
        explained = type(error)(f"can't {what} {shown(path)!r}: {reason.format(what + ' it')}")
        explained.errno = error.errno
        raise explained from None


def read(path: Path) -> str:
    """The text of a database file, which may be compressed by gzip."""
    with _explained("read", path):
        with open(path, "rb") as file:
            content = file.read()
    try:
        return _decoded(content)
    except ValueError as error:
        raise ValueError(f"{shown(path)}: {error}") from None


def has_content(given: object) -> bool:
    """Whether it is bytes or an open file, rather than a text or a path."""
    return isinstance(given, (bytes, bytearray, memoryview)) or hasattr(given, "read")


def text_of(content: Any) -> str:
    """The text in bytes or in an open file, which may be compressed by gzip."""
    if hasattr(content, "read"):
        try:
            content = content.read()
        except UnicodeDecodeError:
            raise ValueError(
                "the open file is not in the encoding that it was opened with: open it with 'rb'"
            ) from None
        if isinstance(content, str):
            return content
    if not isinstance(content, (bytes, bytearray, memoryview)):
        raise TypeError(f"the open file gave {type(content).__name__}, not str or bytes")
    return _decoded(bytes(content))


def _decoded(content: bytes) -> str:
    if content.startswith(_GZIP):
        content = _unpacked(content)
    return content.decode("utf-8", "surrogateescape")


def _unpacked(content: bytes) -> bytes:
    try:
        with gzip.GzipFile(fileobj=io.BytesIO(content)) as file:
            # A few bytes can hold more than the memory.
            made = file.read(_MOST_UNPACKED + 1)
    except (EOFError, OSError, zlib.error) as error:
        raise ValueError(f"the compressed text is damaged: {error}") from None
    if len(made) > _MOST_UNPACKED:
        raise ValueError(
            f"the compressed text holds more than {_MOST_UNPACKED} bytes: decompress it first"
        )
    return made


def write(path: Path, text: str) -> None:
    """Replaces a file: writes a new file in the same folder, flushes it to the device and renames
    it. Until then, and if that fails, the old file does not change. The new file keeps its
    permissions. A symbolic link stays, and its target is replaced. A path that is not an ordinary
    file, such as a pipe, is written directly. A name that ends with ".gz" is compressed."""
    content = text.encode("utf-8", errors="surrogateescape")
    if str(os.fspath(path)).lower().endswith(".gz"):
        content = gzip.compress(content, mtime=0)
    with _explained("write", path):
        target = os.fspath(path)
        mode = os.stat(target).st_mode if os.path.exists(target) else None
        if mode is not None and not stat.S_ISREG(mode):
            with open(target, "wb") as file:
                file.write(content)
            return
        _replace(os.path.realpath(target), content, mode)


def _replace(target: str, content: bytes, mode: Optional[int]) -> None:
    if mode is not None and not os.access(target, os.W_OK):
        raise PermissionError(errno.EACCES, os.strerror(errno.EACCES))
    if mode is None:
        # The permissions that open() gives a new file.
        mask = os.umask(0)
        os.umask(mask)
        mode = 0o666 & ~mask
    folder, name = os.path.split(target)
    number, beside = tempfile.mkstemp(dir=folder, prefix=f".{name[:100]}.", suffix=".tmp")
    try:
        with os.fdopen(number, "wb") as file:
            file.write(content)
            file.flush()
            os.fsync(file.fileno())
        os.chmod(beside, stat.S_IMODE(mode))
        os.replace(beside, target)
    except BaseException:
        with contextlib.suppress(OSError):
            os.unlink(beside)
        raise
    with contextlib.suppress(OSError):
        number = os.open(folder, os.O_RDONLY)
        try:
            os.fsync(number)
        finally:
            os.close(number)
