select s.supplier_no, s.name, s.city, s.country_code
from suppliers s
  left join part_suppliers ps on ps.supplier_no = s.supplier_no
where ps.part_no is null
order by s.supplier_no
