// Transport: the multipoles of the finished Gaussian reorganisation outputs, which
// the outer-sphere reorganisation energies and the site energies are built from:
// the job that converts every output, and the configuration files of the
// conversion and polarisation tools.
#include <cstdio>
#include <string>
#include <utility>
#include <vector>

#include "re_pieces.h"
#include "txutil.h"

namespace {

// An XML tree of options: elements with either children or a text, each level
// indented by four blanks.
struct XmlElement {
  const char* tag;
  std::string text;
  std::vector<XmlElement> children;
};

void write_xml(FILE* fp, const XmlElement& e, int level) {
  const std::string indent(4 * level, ' ');
  if (e.children.empty()) {
    std::fprintf(fp, "%s<%s>%s</%s>\n", indent.c_str(), e.tag, e.text.c_str(), e.tag);
    return;
  }
  std::fprintf(fp, "%s<%s>\n", indent.c_str(), e.tag);
  for (const XmlElement& child : e.children) write_xml(fp, child, level + 1);
  std::fprintf(fp, "%s</%s>\n", indent.c_str(), e.tag);
}

// "<REdir>/<base><suffix>" holding <options> with `tool` inside.
void write_options_file(const Transport& t, const std::string& base, const char* suffix, XmlElement tool) {
  const std::string path = format_string("%s/%s%s", t.job_scripts_REdir.c_str(), base.c_str(), suffix);
  FILE* fp = txre::open_re_file(path);
  write_xml(fp, XmlElement{"options", "", {std::move(tool)}}, 0);
  std::fclose(fp);
}

}  // namespace

// Every state of every covered molecule is converted, whatever the carrier: the
// outer-sphere energies need the neutral and both charged multipoles.
void Transport::write_RE_gaussian_mps_job(const std::vector<int>& molecules) {
  create_directory(job_scripts_REdir);
  create_directory(job_scripts_SCRdir);
  const std::string ext = txre::output_ext(*this);
  std::string payload;
  for (int number : molecules) {
    for (const txre::ReState* s : {&txre::kNeutral, &txre::kCation, &txre::kAnion})
      payload +=
          format_string("tavix_log2mps.exe -inp %s.%s\n", txre::state_base(number, s->name).c_str(), ext.c_str());
    payload += "\n";
  }
  const RE_submission job = txre::submission(*this, txre::kGaussianJobNames, "mps");
  write_RE_mps_job(job.script.c_str(), qc_nodes, qc_ppn, "", "mps", job.marker.c_str(), payload.c_str());
  // Deliberately on standard output, unlike the other drivers' failures.
  write_RE_driver_py("mol_RE_mps.py", {job}, false, stdout);
}

void Transport::write_RE_log2mps_xml_file_one(int index, const char* state) {
  const std::string base = txre::state_base(index + 1, state);
  write_options_file(*this, base, "_log2mps.xml",
                     {"log2mps",
                      "",
                      {{"package", "gaussian", {}},
                       {"logfile", format_string("%s.%s", base.c_str(), txre::output_ext(*this).c_str()), {}},
                       {"mpsfile", format_string("%s.mps", base.c_str()), {}}}});
}

void Transport::write_RE_molpol_xml_file_one(int index, const char* state) {
  const std::string base = txre::state_base(index + 1, state);
  write_options_file(*this, base, "_molpol.xml",
                     {"molpol",
                      "",
                      {{"mpsfiles",
                        "",
                        {{"input", format_string("%s.mps", base.c_str()), {}},
                         {"output", format_string("%s_out.mps", base.c_str()), {}},
                         {"polar", format_string("%s_Thole.xml", base.c_str()), {}}}}}});
}
