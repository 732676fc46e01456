#include "certificates.h"

#include "childprocess.h"
#include "tempdirectory.h"

Certificates::Certificates(const TempDirectory& dir)
    : m_dir(dir)
{
}

bool Certificates::makeCa(const std::string& name)
{
    return ok("openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes -days 2 -subj '/CN="
        + name + "' -addext basicConstraints=critical,CA:TRUE -addext keyUsage=keyCertSign,cRLSign -keyout "
        + m_dir.path(name + ".key") + " -out " + m_dir.path(name + ".crt"));
}

bool Certificates::makeSigned(const std::string& name, const std::string& ca, const std::string& usage)
{
    const std::string extensions = m_dir.path(name + ".ext");
    m_dir.writeFile(
        name + ".ext", "subjectAltName=IP:127.0.0.1,DNS:localhost\nextendedKeyUsage=" + usage + "\n");
    return ok("openssl req -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes -subj '/CN=" + name
               + "' -keyout " + m_dir.path(name + ".key") + " -out " + m_dir.path(name + ".csr"))
        && ok("openssl x509 -req -days 2 -in " + m_dir.path(name + ".csr") + " -CA " + m_dir.path(ca + ".crt")
            + " -CAkey " + m_dir.path(ca + ".key") + " -CAcreateserial -extfile " + extensions + " -out "
            + m_dir.path(name + ".crt"));
}

bool Certificates::ok(const std::string& command)
{
    std::string output;
    const bool done = runCommand(command, output) == 0;
    if (!done)
        m_output += command + "\n" + output;
    return done;
}
