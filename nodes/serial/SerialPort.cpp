#include "nodes/serial/SerialPort.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <termios.h>
#include <vector>

namespace Trovio::Nodes {

namespace {

struct Rate {
    unsigned _baud;
    speed_t _code;
};
constexpr Rate rates[] = {{1200, B1200},       {2400, B2400},       {4800, B4800},       {9600, B9600},
                          {19200, B19200},     {38400, B38400},     {57600, B57600},     {115200, B115200},
                          {230400, B230400},   {460800, B460800},   {500000, B500000},   {921600, B921600},
                          {1000000, B1000000}, {1500000, B1500000}, {2000000, B2000000}, {3000000, B3000000},
                          {4000000, B4000000}};

speed_t codeOf(unsigned baud)
{
    return std::ranges::find(rates, baud, &Rate::_baud)->_code;
}

tcflag_t controlFlags(const SerialFormat& format)
{
    tcflag_t flags = CREAD | CLOCAL; // no modem that has to say that there is a line
    flags |= format._bits == '7' ? CS7 : CS8;
    flags |= format._stops == '2' ? CSTOPB : 0U;
    flags |= format._parity == 'N' ? 0U : PARENB;
    flags |= format._parity == 'O' ? PARODD : 0U;
    flags |= format._flow == SerialFormat::Flow::RtsCts ? CRTSCTS : 0U;
    return flags;
}

/// Bytes as they are, but for those of flow control.
bool setUp(int device, const SerialFormat& format)
{
    termios settings{};
    if (::tcgetattr(device, &settings) != 0)
        return false;
    ::cfmakeraw(&settings);
    settings.c_cflag = controlFlags(format);
    settings.c_iflag = format._flow == SerialFormat::Flow::XonXoff ? IXON | IXOFF : 0U;
    settings.c_cc[VMIN] = 1; // so that 0 bytes mean that the device is gone
    settings.c_cc[VTIME] = 0;
    ::cfsetspeed(&settings, codeOf(format._baud));
    // It succeeds where anything at all could be set.
    termios granted{};
    return ::tcsetattr(device, TCSANOW, &settings) == 0 && ::tcgetattr(device, &granted) == 0 &&
           ::cfgetospeed(&granted) == codeOf(format._baud);
}

std::string describeFailure(const std::string& path, int error)
{
    switch (error) {
    case ENOENT:
        return "there is no '" + path + "'";
    case EACCES:
        return "may not open '" + path + "': " + std::strerror(error) +
               "; make the user a member of the group that owns it, dialout as a rule, and log in again";
    case EBUSY:
    case EWOULDBLOCK:
        return "'" + path + "' is in use by another program";
    case ENOTTY:
        return "'" + path + "' is no serial device";
    default:
        return "cannot open '" + path + "': " + std::strerror(error);
    }
}

} // namespace

std::span<const unsigned> baudRates()
{
    static const std::vector<unsigned> bauds = [] {
        std::vector<unsigned> all;
        for (const Rate& rate : rates)
            all.push_back(rate._baud);
        return all;
    }();
    return bauds;
}

std::string SerialPort::open(const std::string& path, const SerialFormat& format)
{
    close();
    // Looked at first: to open something else might set off what it does.
    struct stat file {};
    if (::stat(path.c_str(), &file) != 0)
        return describeFailure(path, errno);
    if (!S_ISCHR(file.st_mode))
        return describeFailure(path, ENOTTY);
    FileDescriptor device(::open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC));
    if (!device.isOpen())
        return describeFailure(path, errno);
    if (::isatty(device.get()) == 0)
        return describeFailure(path, ENOTTY);
    // The lock is for who asks, the second for who does not.
    if (::flock(device.get(), LOCK_EX | LOCK_NB) != 0)
        return describeFailure(path, errno);
    ::ioctl(device.get(), TIOCEXCL);
    if (!setUp(device.get(), format))
        return "'" + path + "' does not take " + std::to_string(format._baud) + " baud with these settings";
    ::tcflush(device.get(), TCIFLUSH); // what came under other settings
    _device = std::move(device);
    return {};
}

void SerialPort::close()
{
    if (isOpen())
        ::ioctl(_device.get(), TIOCNXCL);
    _device = FileDescriptor();
}

std::optional<std::size_t> SerialPort::read(std::span<char> bytes)
{
    const auto count = ::read(_device.get(), bytes.data(), bytes.size());
    if (count != 0)
        return resultOf(count);
    _problem = "it was unplugged";
    return std::nullopt;
}

std::optional<std::size_t> SerialPort::write(std::string_view bytes)
{
    return resultOf(::write(_device.get(), bytes.data(), bytes.size()));
}

std::optional<std::size_t> SerialPort::resultOf(std::ptrdiff_t count)
{
    if (count >= 0)
        return static_cast<std::size_t>(count);
    if (errno == EAGAIN || errno == EINTR)
        return 0;
    // What a device that was pulled out answers.
    _problem = errno == EIO || errno == ENXIO || errno == ENODEV ? "it was unplugged" : std::strerror(errno);
    return std::nullopt;
}

} // namespace Trovio::Nodes
