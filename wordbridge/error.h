// The one exception of the word side. Thrown where something cannot go on, caught once, in run().
#pragma once

#include <QString>
#include <stdexcept>

namespace wordbridge
{

class Error : public std::runtime_error
{
public:
    // `message` is one sentence for the user, without "error:" in front; it says what is wrong and,
    // where that is not plain, what to do.
    explicit Error(const QString& message)
        : std::runtime_error(message.toStdString()),
          m_message(message)
    {
    }

    const QString& message() const { return m_message; }

private:
    QString m_message;
};

} // namespace wordbridge
