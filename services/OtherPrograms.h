// The commands that lead to other programs and to the help.
#pragma once

namespace services {

class OtherPrograms {
 public:
  virtual ~OtherPrograms() = default;

  virtual void mnuIntEmail_Click() = 0;
  virtual void mnuIntNews_Click() = 0;
  virtual void mnuIntSnews_Click() = 0;
  virtual void mnuIntFTP_Click() = 0;
  virtual void mnuVelloraFTP_Click() = 0;
  virtual void mnuSAR_Click() = 0;
  virtual void mnuUserManual_Click() = 0;
  virtual void mnuHTMLTagRef_Click() = 0;
  virtual void mnuAbout_Click() = 0;
};

}  // namespace services
