// The LibreOffice profile that the companion works in: its own, so that neither the user's settings
// nor a LibreOffice that is open take part.
#pragma once

#include <memory>
#include <QString>
#include <QTemporaryDir>

namespace wordbridge
{

class OfficeProfile
{
public:
    // The profile kept in `cacheFolder` between runs, which saves LibreOffice most of its start-up
    // time. Locked until this object and every LibreOffice started meanwhile are gone, also when
    // one of them is killed. Returns null if it is in use or cannot be written.
    static std::unique_ptr<OfficeProfile> kept(const QString& cacheFolder);

    // A profile that is removed with this object. Throws Error if there is no room for it.
    static std::unique_ptr<OfficeProfile> temporary();

    ~OfficeProfile();
    OfficeProfile(const OfficeProfile&) = delete;
    OfficeProfile& operator=(const OfficeProfile&) = delete;

    const QString& path() const { return m_path; }

    // Removes the profile's content, so that the next one starts afresh; for one that LibreOffice
    // failed with. Does what it can.
    void discard();

private:
    OfficeProfile() = default;
    void fill();

    QString m_path;
    int m_lock = -1;
    std::unique_ptr<QTemporaryDir> m_temporary;
};

} // namespace wordbridge
