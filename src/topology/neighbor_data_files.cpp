// Transport: the neighbor list written out for people and for the tools of the
// workflow. neighbor.dat (read back by build_neighbor_list), CIF pictures of each
// root's surroundings, molecular frames and a map for the orbital-overlap tool,
// and per-molecule bond tables. Everything goes under data_dir.
#include <cmath>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include "structure_output.h"
#include "transport.h"

namespace {

// ---- neighbor.dat and the neighbor report ------------------------------------

const char* const neighbor_dat_head[] = {
    "# nroot, root_mol_info, nnei, neighbors_info\n",
    "# r = molecular COM distance, cindex = neighbor cell index\n",
};
const char* const neighbor_info_head[] = {
    "**** Molecular Neighbor Information\n",
    "# nroot, {root_mol_info, nnei, neighbors_info}\n",
};
const char* const neighbor_info_end = "**** End of Molecular Neighbor Information\n";

const char* const root_line = "%d %8.4f %8.4f %8.4f  # root\n";

// The two layouts of one table: neighbor.dat keeps the id column three wide,
// the report does not.
struct NeighborTableFormats {
  const char* count_line;
  const char* neighbor_line;
};
const NeighborTableFormats neighbor_dat_formats = {
    "%d #      dx        dy        dz         r     cindex\n",
    " %3d  %8.4f  %8.4f  %8.4f  %8.4f  %2d %2d %2d\n",
};
const NeighborTableFormats neighbor_info_formats = {
    "%2d #    dx        dy        dz         r     cindex\n",
    " %d  %8.4f  %8.4f  %8.4f  %8.4f  %2d %2d %2d\n",
};

// ---- neighbor pictures ------------------------------------------------------------

// The picture spans 3 x 3 x 3 cells: the root's cell and one cell around it.
constexpr double kPictureScale = 3.0;

// Deliberately the fixed date 2018-09-12, not the day of the run (the other CIF
// writers stamp the day): pictures of the same list stay identical from run to
// run, and the golden-file tests of these pictures rely on that.
const char* const picture_date = "2018-09-12";

// Behind the shared head: fractional columns and the molecule number.
const char* const picture_columns[] = {
    "_atom_site_fract_x\n",
    "_atom_site_fract_y\n",
    "_atom_site_fract_z\n",
    "_atom_site_description\n",
};
// Centre-of-mass marker of the _mid pictures: label and type are both the
// neighbor number, 0 for the root.
const char* const picture_marker_row = "%-6s %2s %10.6f %10.6f %10.6f  %d\n";

// ---- overlap-tool files -----------------------------------------------------------

const char* const moo_pos_name = "uc_mol-%d ";
const char* const moo_pos_position = "%11.6f %11.6f %11.6f ";
const char* const moo_pos_frame = "%9.6f %9.6f %9.6f %9.6f %9.6f %9.6f %9.6f %9.6f %9.6f\n";

// ---- bond tables --------------------------------------------------------------------

const char* const bond_row = "%3d %3d  0  0\n";

// ---- shared pieces ------------------------------------------------------------------

template <size_t N>
void print_lines(FILE* fp, const char* const (&lines)[N]) {
  for (const char* line : lines) std::fputs(line, fp);
}

// Open failures of the neighbor data files: position line, then the path in
// quotes on standard error, status 1.
FILE* open_quoted_or_fatal(const std::string& path, const char* mode) {
  FILE* fp = std::fopen(path.c_str(), mode);
  if (fp == nullptr) TX_FATAL(txunit::transport, 1, stderr, "Failed to open output file \"%s\"\n", path.c_str());
  return fp;
}

// Every writer but the map walks the neighbor rows; without them there is
// nothing defined to write.
void require_neighbor_list(const Transport& t, const char* who) {
  if (!t.neighbor_built || t.nneighbors == nullptr)
    TX_FATAL(txunit::transport, 1, stderr, "%s: the neighbor list is not built\n", who);
}

// Displacement root -> neighbor in angstrom: latt_f2c times (centre of the
// neighbor + its cell - centre of the root).
void neighbor_displacement(const Transport& t, int i, int j, double d[3]) {
  const int id = t.neighbor_id[i][j];
  const int cell[3] = {t.neighbor_cx[i][j], t.neighbor_cy[i][j], t.neighbor_cz[i][j]};
  double df[3];
  for (int k = 0; k < 3; ++k) df[k] = t.mol_x_s_com[id][k] + cell[k] - t.mol_x_s_com[i][k];
  mat_vec_mul(t.latt_f2c, df, d);
}

// Root lines and neighbor rows, common to neighbor.dat and the report.
void write_neighbor_table(const Transport& t, FILE* fp, const NeighborTableFormats& f) {
  for (int i = 0; i < t.nmols_uc; ++i) {
    std::fprintf(fp, root_line, i + 1, t.mol_x_com[i][0], t.mol_x_com[i][1], t.mol_x_com[i][2]);
    std::fprintf(fp, f.count_line, t.nneighbors[i]);
    for (int j = 0; j < t.nneighbors[i]; ++j) {
      double d[3];
      neighbor_displacement(t, i, j, d);
      const double r = std::sqrt(d[0] * d[0] + d[1] * d[1] + d[2] * d[2]);
      std::fprintf(fp, f.neighbor_line, t.neighbor_id[i][j] + 1, d[0], d[1], d[2], r, t.neighbor_cx[i][j],
                   t.neighbor_cy[i][j], t.neighbor_cz[i][j]);
    }
  }
}

void write_picture_marker(FILE* fp, const Transport& t, int id, const int cell[3], int number) {
  const std::string text = std::to_string(number);
  double x[3];
  for (int k = 0; k < 3; ++k) x[k] = (t.mol_x_s_com[id][k] + cell[k] + 1.0) / kPictureScale;
  std::fprintf(fp, picture_marker_row, text.c_str(), text.c_str(), x[0], x[1], x[2], number);
}

// mol<i+1>_neighbors.cif, or with `mid` mol<i+1>_neighbors_mid.cif, which adds
// a centre-of-mass marker behind each molecule.
void write_neighbor_picture(Transport& t, int i, bool mid) {
  const std::string path =
      format_string(mid ? "%s/mol%d_neighbors_mid.cif" : "%s/mol%d_neighbors.cif", t.data_dir.c_str(), i + 1);
  FILE* fp = open_quoted_or_fatal(path, "wt");
  const double scale[3] = {kPictureScale, kPictureScale, kPictureScale};
  structure_output::write_p1_cif_head(fp, t.get_identifier(), picture_date, t.cell_latt, scale);
  print_lines(fp, picture_columns);

  const int origin[3] = {0, 0, 0};
  double shift[3] = {0.0, 0.0, 0.0};
  t.write_cif_mol_one(fp, 0, t.mol_natoms[i], t.mol_atypes[i], t.mol_x_s[i], shift, kPictureScale, 0);
  if (mid) write_picture_marker(fp, t, i, origin, 0);
  int first = t.mol_natoms[i];
  for (int j = 0; j < t.nneighbors[i]; ++j) {
    const int id = t.neighbor_id[i][j];
    const int cell[3] = {t.neighbor_cx[i][j], t.neighbor_cy[i][j], t.neighbor_cz[i][j]};
    for (int k = 0; k < 3; ++k) shift[k] = cell[k];
    t.write_cif_mol_one(fp, first, t.mol_natoms[id], t.mol_atypes[id], t.mol_x_s[id], shift, kPictureScale, j + 1);
    if (mid) write_picture_marker(fp, t, id, cell, j + 1);
    first += t.mol_natoms[id];
  }
  std::fputs("\n", fp);
  std::fclose(fp);
}

// Principal frame of a molecule for the overlap tool: the raw moment tensor on
// Cartesian atoms (no division by the atom count), its Jacobi axes, transposed;
// row-major, so the rows are the axes.
void molecular_frame(Transport& t, int m, double frame[9]) {
  const int n = t.mol_natoms[m];
  std::vector<double> mass(n > 0 ? n : 0);
  for (int a = 0; a < n; ++a) mass[a] = t.find_element_mass_from_index(t.mol_atypes[m][a]);
  double I[3][3], e[3], V[3][3];
  t.calc_moment_of_inertia(n, t.mol_x[m], mass.data(), I);
  int nrot = 0;
  jacobi_nr(I, 3, e, V, &nrot);
  transpose_matrix(V);
  for (int r = 0; r < 3; ++r)
    for (int c = 0; c < 3; ++c) frame[3 * r + c] = V[r][c];
}

void write_moo_pos_line(FILE* fp, int number, const double* x, const double* frame) {
  std::fprintf(fp, moo_pos_name, number);
  std::fprintf(fp, moo_pos_position, x[0], x[1], x[2]);
  std::fprintf(fp, moo_pos_frame, frame[0], frame[1], frame[2], frame[3], frame[4], frame[5], frame[6], frame[7],
               frame[8]);
}

// The i-th entry of an index-shift list: 0 for an empty list. A list that is
// given but has no entry for molecule i is rejected rather than read past.
int adjustment_of(const std::vector<int>& list, const char* name, int i) {
  if (list.empty()) return 0;
  if (i < 0 || i >= static_cast<int>(list.size()))
    TX_FATAL(txunit::transport, 1, stderr, "write_map_xml_segment: %s has %d values, none for molecule %d\n", name,
             static_cast<int>(list.size()), i + 1);
  return list[i];
}

// Bonds of one molecule as (first atom, second atom), one-based, ordered by the
// first atom and then by the order found.
std::multimap<int, int> molecule_bonds(Transport& t, int m) {
  std::multimap<int, int> bonds;
  const int n = t.mol_natoms[m];
  if (n < 2) return bonds;
  const double* x = t.mol_x[m];
  for (int a = 0; a < n - 1; ++a) {
    const double ra = t.find_element_radius_from_index(t.mol_atypes[m][a]);
    for (int b = a + 1; b < n; ++b) {
      const double dx = x[3 * b] - x[3 * a];
      const double dy = x[3 * b + 1] - x[3 * a + 1];
      const double dz = x[3 * b + 2] - x[3 * a + 2];
      const double r = std::sqrt(dx * dx + dy * dy + dz * dz);
      const double limit = (ra + t.find_element_radius_from_index(t.mol_atypes[m][b])) * t.bond_dis_scale;
      if (limit > r) bonds.insert({a + 1, b + 1});
    }
  }
  return bonds;
}

}  // namespace

void Transport::output_neighbor_info(FILE* stream) {
  require_neighbor_list(*this, "output_neighbor_info");
  print_lines(stream, neighbor_info_head);
  std::fprintf(stream, "%d\n", nmols_uc);
  write_neighbor_table(*this, stream, neighbor_info_formats);
  std::fputs(neighbor_info_end, stream);
  std::fputs("\n", stream);
}

void Transport::output_neighbor_data() {
  require_neighbor_list(*this, "output_neighbor_data");
  create_directory(data_dir);
  const std::string path = format_string("%s/neighbor.dat", data_dir.c_str());
  if (debug_level) std::printf("Writing neighbor file \"%s\"... ", path.c_str());
  FILE* fp = open_quoted_or_fatal(path, "wt");
  print_lines(fp, neighbor_dat_head);
  std::fprintf(fp, "%d\n", nmols_uc);
  write_neighbor_table(*this, fp, neighbor_dat_formats);
  std::fclose(fp);

  // Bit 0 is tested first: a level with both bits draws root 0 alone.
  const int level = data_mol_output_level;
  int nroots = 0;
  if (level & 1)
    nroots = nmols_uc > 0 ? 1 : 0;
  else if (level & 2)
    nroots = nmols_uc;
  for (int i = 0; i < nroots; ++i) write_neighbor_picture(*this, i, false);
  for (int i = 0; i < nroots; ++i) write_neighbor_picture(*this, i, true);
}

void Transport::output_moo_pos_data() {
  require_neighbor_list(*this, "output_moo_pos_data");
  create_directory(data_dir);
  std::vector<double> frames(9 * static_cast<size_t>(nmols_uc > 0 ? nmols_uc : 0));
  for (int m = 0; m < nmols_uc; ++m) molecular_frame(*this, m, &frames[9 * m]);

  for (int i = 0; i < nmols_uc; ++i) {
    const std::string uc_path = format_string("%s/moo_mol%d_uc.pos", data_dir.c_str(), i + 1);
    const std::string nei_path = format_string("%s/moo_mol%d_nei.pos", data_dir.c_str(), i + 1);
    if (debug_level) std::printf("Writing molecular pos files \"%s\"... ", uc_path.c_str());
    FILE* uc = open_quoted_or_fatal(uc_path, "w+t");
    FILE* nei = open_quoted_or_fatal(nei_path, "w+t");
    // Line n of both files describes pair n. The frame of a molecule depends on
    // its atoms alone, so the neighbor's frame is the one computed above for it.
    for (int j = 0; j < nneighbors[i]; ++j) {
      const int id = neighbor_id[i][j];
      write_moo_pos_line(uc, i + 1, mol_x_com[i], &frames[9 * i]);
      write_moo_pos_line(nei, id + 1, &neighbor_x[i][3 * j], &frames[9 * id]);
    }
    std::fclose(uc);
    std::fclose(nei);
  }
}

void Transport::output_moo_map_xml() {
  if (!homo_ready) calc_homo();
  if (homo_index == nullptr)
    TX_FATAL(txunit::transport, 1, stderr, "output_moo_map_xml: no HOMO index per molecule\n");
  create_directory(data_dir);
  const std::string path = format_string("%s/moo_map.xml", data_dir.c_str());
  if (debug_level) std::printf("Writing map file \"%s\"... ", path.c_str());
  FILE* fp = std::fopen(path.c_str(), "wt");
  if (fp == nullptr) TX_FATAL(txunit::transport, 1, stderr, "Failed to open output file %s\n", path.c_str());
  std::fputs("<molecules>\n", fp);
  std::vector<double> mass;
  for (int i = 0; i < nmols_uc; ++i) {
    const int n = mol_natoms[i];
    mass.assign(n > 0 ? n : 0, 0.0);
    for (int a = 0; a < n; ++a) mass[a] = find_element_mass_from_index(mol_atypes[i][a]);
    write_map_xml_segment(fp, "uc", i, n, mass.data(), homo_index[i]);
  }
  std::fputs("</molecules>\n", fp);
  std::fclose(fp);
}

void Transport::write_map_xml_segment(FILE* fp, const char* prefix, int i, int natoms, double* mass, int homo) {
  const int homo_shift = adjustment_of(homo_adjustment, "homo_adjustment", i);
  const int lumo_shift = adjustment_of(lumo_adjustment, "lumo_adjustment", i);
  std::fputs("  <molecule>\n", fp);
  std::fprintf(fp, "    <name>%s_mol-%d</name>\n", prefix, i + 1);
  std::fprintf(fp, "    <coordinates>../%s/%s_mol-%d.xyz</coordinates>\n", hl_dir.c_str(), prefix, i + 1);
  std::fprintf(fp, "    <orbitals>../%s/%s_mol-%d.orb</orbitals>\n", hl_dir.c_str(), prefix, i + 1);
  std::fputs("    <basisset>INDO</basisset>\n", fp);
  std::fprintf(fp, "    <torbital>%d %d</torbital>\n", homo + homo_shift, homo + 1 + lumo_shift);
  std::fputs("    <map>\n", fp);
  std::fputs("     ", fp);
  for (int a = 1; a <= natoms; ++a) std::fprintf(fp, " %d", a);
  std::fputs("\n", fp);
  std::fputs("    </map>\n", fp);
  std::fputs("    <weights>\n", fp);
  std::fputs("     ", fp);
  for (int a = 0; a < natoms; ++a) std::fprintf(fp, " %.1f", mass[a]);
  std::fputs("\n", fp);
  std::fputs("    </weights>\n", fp);
  std::fputs("  </molecule>\n", fp);
}

void Transport::write_mol_bonds_files(bool do_write) {
  if (!do_write) return;
  create_directory(data_dir);
  std::vector<int> molecules;
  if (unique_RE_calc_flag) {
    for (int k = 0; k < uc_mol_re_count; ++k) {
      const int number = uc_mol_re_list != nullptr ? uc_mol_re_list[k] : 0;
      if (number < 1 || number > nmols_uc)
        TX_FATAL(txunit::transport, 1, stderr, "write_mol_bonds_files: uc_mol_re_list entry %d is outside 1..%d\n",
                 number, nmols_uc);
      molecules.push_back(number - 1);
    }
  } else {
    for (int m = 0; m < nmols_uc; ++m) molecules.push_back(m);
  }
  for (int m : molecules) {
    const std::multimap<int, int> bonds = molecule_bonds(*this, m);
    const std::string path = format_string("%s/mol%d_bonds.dat", data_dir.c_str(), m + 1);
    FILE* fp = std::fopen(path.c_str(), "wt");
    if (fp == nullptr) TX_FATAL(txunit::transport, 1, stderr, "Failed to open output file %s\n", path.c_str());
    std::fprintf(fp, "%d\n", static_cast<int>(bonds.size()));
    for (const auto& bond : bonds) std::fprintf(fp, bond_row, bond.first, bond.second);
    std::fclose(fp);
  }
}
